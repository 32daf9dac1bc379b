# corlith fft through the real reference solver: a waveform alternating +1 and -1 lies
# wholly on the last bin; two nodes print in name order; a spectrum comes back as its
# waveform; the solver installed under a data folder is found there.
if(TARGET FFT)
  set(_fft "$<TARGET_FILE:FFT>")
  corlith_tool_test(fft-solver-alternating
    "(d=$(mktemp -d) && printf '1\\n-1\\n1\\n-1\\n1\\n-1\\n1\\n-1\\n' > \"$d/w.csv\" && corlith fft --step 0.5 --solver ${_fft} \"$d/w.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
    PASS "^frequency,real,imaginary\n0,0,0\n0\\.25,0,0\n0\\.5,0,0\n0\\.75,0,0\n1,1,0\n\\[exit 0\\]")
  corlith_tool_test(fft-solver-two-nodes
    "(d=$(mktemp -d) && printf 't,v\\n0,1\\n0.25,0\\n0.5,-1\\n0.75,0\\n' > \"$d/a.csv\" && printf 't,v\\n0,0\\n0.25,2\\n0.5,0\\n0.75,-2\\n' > \"$d/b.csv\" && corlith fft --solver ${_fft} \"$d/b.csv\" \"$d/a.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
    PASS "^frequency,a\\.real,a\\.imaginary,b\\.real,b\\.imaginary\n0,0,0,0,0\n1,1,0,0,-2\n2,0,0,0,0\n\\[exit 0\\]")
  corlith_tool_test(fft-solver-inverse
    "(d=$(mktemp -d) && printf 'f,re,im\\n0,1,0\\n1,2,0\\n2,0.5,0\\n' > \"$d/s.csv\" && corlith fft --inverse --solver ${_fft} \"$d/s.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
    PASS "^time,value\n0,3\\.5\n0\\.25,0\\.5\n0\\.5,-0\\.5\n0\\.75,0\\.5\n\\[exit 0\\]")
  corlith_tool_test(fft-solver-in-data-folder
    "(d=$(mktemp -d) && mkdir -p \"$d/Data/Analysis\" && cp ${_fft} \"$d/Data/Analysis/FFT\" && printf '2\\n2\\n2\\n' > \"$d/w.csv\" && corlith fft --step 1 --data-folder \"$d\" \"$d/w.csv\"; s=$?; rm -rf \"$d\"; exit $s)"
    PASS "^frequency,real,imaginary\n0,2,0\n0\\.3333333333333333,0,0\n\\[exit 0\\]")
endif()
