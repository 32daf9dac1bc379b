# corlith dump over small archives written byte by byte with printf: the JSON of what
# loads, the error and byte offset of what does not, and the usage errors.
corlith_tool_test(dump-list "corlith dump --list" PASS "CArrayPointD\n.*CNArrayL\n.*CStringPairSet\n")
corlith_tool_test(dump-int-array
  "f=$(mktemp) && printf '\\001\\000\\000\\200\\002\\000\\000\\000\\000\\000\\000\\000\\001\\000\\000\\000\\377\\377\\377\\377' > $f && corlith dump CArrayN $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"consumed\": 20,\n  \"content\": \\[\n    1,\n    -1\n  \\],\n  \"size\": 20\n}\n\\[exit 0\\]")
corlith_tool_test(dump-int-string-pair
  "f=$(mktemp) && printf '\\001\\000\\000\\000\\007\\000\\000\\000\\002ab' > $f && corlith dump CIntStringPair $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"integer\": 7,\n    \"string\": \"ab\"")
# Values I classes are there too: a point of two doubles (1.5, -2).
corlith_tool_test(dump-pointd
  "f=$(mktemp) && printf '\\001\\000\\000\\000\\000\\000\\000\\000\\000\\000\\370\\077\\000\\000\\000\\000\\000\\000\\000\\300' > $f && corlith dump CPointD $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"x\": 1.5,\n    \"y\": -2.0")
# The older array form refuses the newer header: empty, and only 4 of 12 bytes consumed.
corlith_tool_test(dump-narrayl-newer-header-loads-empty
  "f=$(mktemp) && printf '\\001\\000\\000\\200\\001\\000\\000\\000\\005\\000\\000\\000' > $f && corlith dump CNArrayL $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"consumed\": 4,\n  \"content\": \\[\\],\n  \"size\": 12")
# Five elements announced, one present: the error names the offset where data ran out.
corlith_tool_test(dump-short-archive-reports-offset
  "f=$(mktemp) && printf '\\001\\000\\000\\200\\005\\000\\000\\000\\000\\000\\000\\000\\001\\000\\000\\000' > $f && corlith dump CArrayN $f; s=$?; rm -f $f; (exit $s)"
  EXIT 1 PASS "end of the archive.*\\(at byte offset 16\\)\n\\[exit 1\\]" FAIL "\"content\"")
corlith_tool_test(dump-unknown-class "corlith dump CNoSuchClass /dev/null" EXIT 2 PASS "unknown class 'CNoSuchClass'.*\\[exit 2\\]")
corlith_tool_test(dump-missing-file "corlith dump CArrayN /nonexistent/archive" EXIT 2 PASS "cannot open.*\\[exit 2\\]")
