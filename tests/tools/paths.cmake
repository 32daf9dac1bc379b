# corlith paths: the tool in the build tree (no installation file beside it), a copy
# beside an installation file of the ECAD edition (the data folder by its exact text,
# nothing created), and a copy with the trace marker and a Log folder.
corlith_tool_test(paths-uninstalled "corlith paths"
  PASS "^layout: uninstalled\nedition: standard\ninstallation file: [^\n]*/corlith-installation\\.ini \\(absent\\)\nexecutable folder: [^\n]*/tools/corlith\ndata folder: [^\n]*/tools/corlith\nhelp folder: [^\n]*/tools/help/Tessel\ntemporary folder: [^\n]*/tools/corlith/Data/Temp\nsolver temporary folders: [^\n]*/tools/corlith/Data/Analysis/Temp/<process id>/<name>\n[^\n]*\ntracing: off\n")
corlith_tool_test(paths-installed-json
  "(d=$(mktemp -d) && cp \"$(command -v corlith)\" \"$d/\" && printf 'layout=installed\\nedition=ecad\\n' > \"$d/corlith-installation.ini\" && ORVANE_K2_TESSEL_CONFIG_PATH=\"$d/missing\" \"$d/corlith\" paths --json; s=$?; ls \"$d\"; rm -rf \"$d\"; exit $s)"
  PASS "\"layout\": \"installed\",\n  \"edition\": \"ecad\",\n  \"installationFile\": {\n    \"path\": \"[^\"]*/corlith-installation\\.ini\",\n    \"found\": true\n  },\n[^}]*\"dataFolder\": \"/var/lib/Orvane/TesselForEcad/2025\\.1\",\n[^}]*\"solverTemporaryRoot\": \"/var/lib/Orvane/TesselForEcad/2025\\.1/Data/Analysis/Temp\",\n[^}]*\"value\": \"[^\"]*/missing\"\n  },\n  \"tracing\": false\n}\ncorlith\ncorlith-installation\\.ini\n\\[exit 0\\]")
corlith_tool_test(paths-tracing
  "(d=$(mktemp -d) && cp \"$(command -v corlith)\" \"$d/\" && touch \"$d/CREATE_PATH_LOG\" && mkdir \"$d/Log\" && \"$d/corlith\" paths && cat \"$d\"/Log/KTPathCombine_*.log; s=$?; rm -rf \"$d\"; exit $s)"
  PASS "tracing: on\n\\[[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\] : [^\n]*/help/Tessel\n\tKTUtility\\([0-9]+\\)\n\\[exit 0\\]")
