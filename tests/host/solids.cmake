qorvane_test(test_host_solids
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/solids/real_solids_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/solids/solid_entities_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/checks.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/part_maker.cpp
  LINK qorvane_host)
