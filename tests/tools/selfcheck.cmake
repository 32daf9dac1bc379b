corlith_tool_test(version "corlith --version" PASS "corlith 2025\\.1\\.1")
corlith_tool_test(self-check "corlith self-check" PASS "7 passed, 0 failed")
corlith_tool_test(self-check-json "corlith self-check --json" PASS "\"failed\": 0")
corlith_tool_test(unknown-command "corlith bogus" EXIT 109)
