# corlith image bmp2jpg (only in a tool built with the user-interface library): a 2 × 1
# BMP written byte by byte becomes a JPEG (its first bytes FF D8 FF); a missing input
# exits 1, says so and writes nothing.
if(TARGET corlith_ui_library)
  corlith_tool_test(image-bmp2jpg
    "d=$(mktemp -d) && printf 'BM\\076\\000\\000\\000\\000\\000\\000\\000\\066\\000\\000\\000\\050\\000\\000\\000\\002\\000\\000\\000\\001\\000\\000\\000\\001\\000\\030\\000\\000\\000\\000\\000\\010\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\000\\377\\000\\377\\000\\000\\000' > $d/in.bmp && env -u DISPLAY corlith image bmp2jpg $d/in.bmp $d/out.jpg && od -An -tx1 -N3 $d/out.jpg; s=$?; rm -rf $d; (exit $s)"
    PASS " ff d8 ff\n\\[exit 0\\]")
  corlith_tool_test(image-bmp2jpg-missing-input
    "d=$(mktemp -d) && corlith image bmp2jpg $d/none.bmp $d/out.jpg; s=$?; ls $d; rm -rf $d; (exit $s)"
    EXIT 1 PASS "cannot convert .*none.bmp to .*out.jpg\n\\[exit 1\\]")
  # The toolkit's process-wide caches are no leaks of ours (as for the UI tests).
  set_tests_properties(tool.image-bmp2jpg tool.image-bmp2jpg-missing-input PROPERTIES
    ENVIRONMENT "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/ui/lsan.supp:print_suppressions=0")
endif()
