# corlith fft with a stand-in solver: a shell script under <data folder>/Data/Analysis
# that appends a fixed output section to the exchange file and also writes it as the
# multi-node result file. (Jobs through the real solver are tested with the solver.)
set(_fft_solver "d=$(mktemp -d) && mkdir -p \"$d/Data/Analysis\" && printf '#!/bin/sh\\ncat \"$0.out\" >> \"$1\"\\ncat \"$0.out\" > \"$(dirname \"$1\")/job_out.txt\"\\n' > \"$d/Data/Analysis/FFT\" && chmod +x \"$d/Data/Analysis/FFT\"")
corlith_tool_test(fft-single-node
  "(${_fft_solver} && printf '(Output\\n(Type Frequency)\\n0 1 2\\n5e6 0.5 -0.25\\n)\\n' > \"$d/Data/Analysis/FFT.out\" && printf 'time,v\\n0,1\\n1e-9,2\\n' > \"$d/wave.csv\" && corlith fft --data-folder \"$d\" \"$d/wave.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
  PASS "^frequency,real,imaginary\n0,1,2\n5e\\+06,0\\.5,-0\\.25\n\\[exit 0\\]")
corlith_tool_test(fft-nodes-in-name-order
  "(${_fft_solver} && printf '(Output\\n(Type Time)\\n(Size 2 2)\\n0 1 2\\n0.5 3 4\\n)\\n' > \"$d/Data/Analysis/FFT.out\" && printf '1\\n2\\n' > \"$d/b.csv\" && printf '3\\n4\\n' > \"$d/a.csv\" && corlith fft --step 0.5 --solver \"$d/Data/Analysis/FFT\" \"$d/b.csv\" \"$d/a.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
  PASS "^time,a,b\n0,1,2\n0\\.5,3,4\n\\[exit 0\\]")
corlith_tool_test(fft-solver-without-result
  "(${_fft_solver} && : > \"$d/Data/Analysis/FFT.out\" && printf '1\\n2\\n' > \"$d/w.csv\" && corlith fft --step 1 --data-folder \"$d\" \"$d/w.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
  EXIT 1 PASS "corlith fft: the solver gave no result \\([^\n]*/Data/Analysis/FFT\\)\n\\[exit 1\\]")
corlith_tool_test(fft-no-solver "(printf '1\\n' > /tmp/corlith-fft-w$$.csv; corlith fft --step 1 --data-folder /nonexistent /tmp/corlith-fft-w$$.csv; s=$?; rm -f /tmp/corlith-fft-w$$.csv; exit $s)"
  EXIT 2 PASS "no FFT solver at /nonexistent/Data/Analysis/FFT \\(install it, or give --data-folder or --solver\\)\n\\[exit 2\\]")
corlith_tool_test(fft-bad-csv
  "(d=$(mktemp -d) && printf 'x,v\\n0,1\\n1,2,3\\n' > \"$d/w.csv\" && corlith fft --solver /bin/true \"$d/w.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
  EXIT 2 PASS "w\\.csv:3: expected \"value\" or \"x,value\" as on the lines before\n\\[exit 2\\]")
corlith_tool_test(fft-needs-a-step
  "(d=$(mktemp -d) && printf '1\\n2\\n' > \"$d/w.csv\" && corlith fft --solver /bin/true \"$d/w.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
  EXIT 2 PASS "give --step \\(the files have no x column of two rows or more\\)\n\\[exit 2\\]")
