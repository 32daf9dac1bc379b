corlith_tool_test(md5-like-md5sum "cd ${CMAKE_CURRENT_BINARY_DIR} && printf abc > md5-abc.txt && : > md5-empty.txt && corlith md5 md5-abc.txt md5-empty.txt"
  PASS "^900150983cd24fb0d6963f7d28e17f72  md5-abc.txt\nd41d8cd98f00b204e9800998ecf8427e  md5-empty.txt\n\\[exit 0\\]")
corlith_tool_test(md5-missing-file-exits-1 "corlith md5 /nonexistent/file 2>&1" EXIT 1 PASS "cannot read")
corlith_tool_test(sort-natural "printf 'R10\\nR2\\r\\nR1\\nC07\\nC7\\n' | corlith sort"
  PASS "^C07\nC7\nR1\nR2\nR10\n\\[exit 0\\]")
corlith_tool_test(match-combination "printf 'R1\\nR2\\nC1\\nU1\\n' | corlith match '[R#],[C#]~[*2]'"
  PASS "^R1\nC1\n\\[exit 0\\]")
corlith_tool_test(match-rich-range "printf 'r3\\nR10\\nR5\\n' | corlith match --rich '[R<1..5>]'"
  PASS "^r3\nR5\n\\[exit 0\\]")
corlith_tool_test(match-none-exits-1 "printf 'GND\\n' | corlith match '[NET_*]'" EXIT 1)
corlith_tool_test(format-digits "corlith format --digits 3 --cut round 1234.5678 1.2345 123456789 -0.0004"
  PASS "^1234.57\n1.23\n123456789\n0\n\\[exit 0\\]")
corlith_tool_test(format-places-ceil "corlith format --places 2 --cut ceil 1234.5678 -2.5"
  PASS "^1234.57\n-2.50\n\\[exit 0\\]")
corlith_tool_test(format-bad-number-exits-1 "corlith format --places 2 abc 2>&1" EXIT 1 PASS "not a number")
corlith_tool_test(format-needs-a-rule "corlith format 1.5 2>&1" EXIT 2 PASS "--digits")
