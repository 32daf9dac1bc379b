# corlith dump knows the property records: a CGProperty (version 2, name, comment), a
# CGProperty of a foreign version (only its word consumed), and the 20-byte
# CLPropertyArray of two records whose texts were never stored.
corlith_tool_test(dump-list-properties "corlith dump --list"
  PASS "CFRectArray\nCGProperty\nCGPropertyArray\n.*CIntStringPairArray\nCLProperty\nCLPropertyArray\n")
corlith_tool_test(dump-gproperty
  "f=$(mktemp) && printf '\\002\\000\\000\\000\\003net\\004rail' > $f && corlith dump CGProperty $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"consumed\": 13,\n  \"content\": {\n    \"comment\": \"rail\",\n    \"name\": \"net\"\n  },\n  \"size\": 13")
corlith_tool_test(dump-gproperty-foreign-version
  "f=$(mktemp) && printf '\\001\\000\\000\\000\\003net\\004rail' > $f && corlith dump CGProperty $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"consumed\": 4,\n  \"content\": {\n    \"comment\": \"\",\n    \"name\": \"\"\n  },\n  \"size\": 13")
corlith_tool_test(dump-lproperty-array
  "f=$(mktemp) && printf '\\001\\000\\000\\200\\002\\000\\000\\000\\000\\000\\000\\000\\001\\000\\000\\000\\001\\000\\000\\000' > $f && corlith dump CLPropertyArray $f; s=$?; rm -f $f; (exit $s)"
  PASS "\"class\": \"CLPropertyArray\",\n  \"consumed\": 20,\n  \"content\": \\[\n    {\n      \"text1\": \"\",\n      \"text2\": \"\",\n      \"text3\": \"\"\n    },\n    {\n[^]]*\\],\n  \"size\": 20")
