corlith_tool_test(filter-digit-run "printf 'R1\\nRA1\\nR\\r\\nR123\\n' | corlith filter 'R[N*]'"
  PASS "^R1\nR\nR123\n\\[exit 0\\]" FAIL "RA1")
corlith_tool_test(filter-no-match-exits-1 "printf 'GND\\n' | corlith filter 'NET_[*]'" EXIT 1)
corlith_tool_test(filter-missing-character-is-no-match "printf '\\nA1\\n' | corlith filter '[*][N*]'"
  PASS "^A1\n\\[exit 0\\]")
corlith_tool_test(split-quote-trim "echo 'a, \"b,c\" ,,d' | corlith split , --quote --trim"
  PASS "^a\nb,c\nd\n\\[exit 0\\]")
corlith_tool_test(split-keep-empty "echo 'a,,b,' | corlith split , --keep-empty" PASS "^a\n\nb\n\n\\[exit 0\\]")
