qorvane_test(test_host_flat
  SOURCES
    flat/bodies_test.cpp
    flat/gradient_test.cpp
    flat/hatch_test.cpp
    flat/pictures_test.cpp
    flat/shared_test.cpp
    flat/underlay_test.cpp
  LINK qorvane_host)
