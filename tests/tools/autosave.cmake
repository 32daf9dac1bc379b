# corlith autosave on real folders made by the shell: the back-ups newest first (largest
# number first, equal numbers by time), other files left out, JSON with another
# extension, an empty folder, and a folder that is not there.
corlith_tool_test(autosave-newest-first
  "(export TZ=UTC; d=$(mktemp -d) && printf v0 > \"$d/Board.bak\" && printf v1 > \"$d/Board.bak1\" && printf v12! > \"$d/Board.bak12\" && printf o > \"$d/Other.bak\" && printf n > \"$d/notes.txt\" && touch -d '2025-01-02 03:04:05' \"$d/Board.bak12\" && touch -d '2025-01-01 00:00:00' \"$d/Board.bak1\" \"$d/Board.bak\" && touch -d '2025-01-01 00:00:09' \"$d/Other.bak\" && corlith autosave \"$d\"; s=$?; ls \"$d\" | wc -l; rm -rf \"$d\"; exit $s)"
  PASS "^number  modified                   size  path\n    12  2025-01-02 03:04:05           4  [^\n]*/Board\\.bak12\n     1  2025-01-01 00:00:00           2  [^\n]*/Board\\.bak1\n     0  2025-01-01 00:00:09           1  [^\n]*/Other\\.bak\n     0  2025-01-01 00:00:00           2  [^\n]*/Board\\.bak\n5\n\\[exit 0\\]")
corlith_tool_test(autosave-json-other-extension
  "(export TZ=UTC; d=$(mktemp -d) && printf abc > \"$d/Doc.sav3\" && printf x > \"$d/Doc.bak9\" && touch -d '2024-02-29 12:00:00' \"$d/Doc.sav3\" && corlith autosave \"$d\" --ext .sav --json; s=$?; rm -rf \"$d\"; exit $s)"
  PASS "\"extension\": \"\\.sav\",\n  \"backups\": \\[\n    {\n      \"path\": \"[^\"]*/Doc\\.sav3\",\n      \"number\": 3,\n      \"modified\": \"2024-02-29 12:00:00\",\n      \"modifiedUnix\": 1709208000,\n      \"size\": 3\n    }\n  \\]\n}\n\\[exit 0\\]")
corlith_tool_test(autosave-none
  "(d=$(mktemp -d) && printf n > \"$d/notes.txt\" && corlith autosave \"$d\"; s=$?; rm -rf \"$d\"; exit $s)"
  PASS "^no back-up files \\(names holding \"\\.bak\"\\) in [^\n]*\n\\[exit 0\\]")
corlith_tool_test(autosave-missing-folder "corlith autosave /nonexistent/backups" EXIT 2
  PASS "/nonexistent/backups is not a folder\n\\[exit 2\\]")
