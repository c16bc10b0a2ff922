qorvane_test(test_host_db
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/db/attached_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/change_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/damaged_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/groups_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/images_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/lights_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/module_class_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/round_trip_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/tag_test.cpp
    ${CMAKE_CURRENT_LIST_DIR}/db/shared_drawings_test.cpp
  LINK qorvane_host nlohmann_json::nlohmann_json)
