qorvane_test(test_host_acis
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/acis/body_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/checks.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/damage_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/drawings_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/geometry_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/part_maker.cpp
    ${CMAKE_CURRENT_LIST_DIR}/acis/text_test.cpp
  LINK qorvane_host)
