qorvane_test(test_host_stored
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/stored/clip_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/stored/filter_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/stored/proxy_damage_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/stored/proxy_entity_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/stored/proxy_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/stored/text_test.cpp
  LINK qorvane_host)
