qorvane_test(test_host_references
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/references/draw_report_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/references/inserts_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/references/references_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/references/sun_test.cpp
  LINK qorvane_host)
