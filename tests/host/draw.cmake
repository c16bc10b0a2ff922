qorvane_test(test_host_draw
  SOURCES
    draw/blocks_test.cpp
    draw/commands_test.cpp
    draw/drawings_test.cpp
    draw/entities_test.cpp
    draw/extents_test.cpp
    draw/fallback_test.cpp
    draw/ge_test.cpp
    draw/jig_test.cpp
    draw/meshes_test.cpp
    draw/module_test.cpp
    draw/services_test.cpp
    draw/shape_cache_test.cpp
    draw/snapshot_test.cpp
    draw/spline_test.cpp
    draw/subdivision_test.cpp
    draw/view_test.cpp
  LINK qorvane_host)

# Modules that behave in different ways, for the loader's tests.
foreach(kind good second refusing throwing old bare)
  add_library(host_module_${kind} MODULE draw/modules/module.cpp)
  string(TOUPPER ${kind} kind_upper)
  target_compile_definitions(host_module_${kind} PRIVATE MODULE_${kind_upper} MODULE_NAME="${kind}")
  target_link_libraries(host_module_${kind} PRIVATE qorvane_host qorvane_warnings)
  set_target_properties(host_module_${kind} PROPERTIES PREFIX "" SUFFIX ".arx"
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/modules)
  add_dependencies(test_host_draw host_module_${kind})
endforeach()
target_compile_definitions(test_host_draw PRIVATE
  HOST_TEST_MODULES="${CMAKE_CURRENT_BINARY_DIR}/modules")
