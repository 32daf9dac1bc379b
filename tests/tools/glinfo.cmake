# corlith glinfo (only in a tool built with the user-interface library): on a display
# where OpenGL draws (a private Xvfb, Mesa) it answers 1 with the version text; with
# Mesa's no-op driver, which draws nothing, 0 and exit 1; without a display, 0 at once.
if(TARGET corlith_ui_library)
  set(_with_display ${PROJECT_SOURCE_DIR}/tests/ui/with-display.sh)
  corlith_tool_test(glinfo-draws "${_with_display} corlith glinfo"
    PASS "opengl: 1\nversion: [0-9]+\\.[0-9]+.*\n\\[exit 0\\]")
  corlith_tool_test(glinfo-driver-draws-nothing
    "GALLIUM_NOOP=true LIBGL_ALWAYS_SOFTWARE=1 ${_with_display} corlith glinfo"
    EXIT 1 PASS "opengl: 0\n")
  corlith_tool_test(glinfo-no-display "CORLITH_TEST_DISPLAY=inherit env -u DISPLAY corlith glinfo"
    EXIT 1 PASS "opengl: 0\nversion: \n\\[exit 1\\]")
  # The toolkit's process-wide caches are no leaks of ours (as for the UI tests).
  set_tests_properties(tool.glinfo-draws tool.glinfo-driver-draws-nothing tool.glinfo-no-display PROPERTIES
    ENVIRONMENT "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/ui/lsan.supp:print_suppressions=0")
endif()
