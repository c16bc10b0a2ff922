qorvane_test(test_host_brep
  SOURCES
    brep/bodies.cpp
    brep/damage_test.cpp
    brep/faces_test.cpp
    brep/solids_test.cpp
    brep/splines_test.cpp
    brep/triangulate_test.cpp
  LINK qorvane_host)
