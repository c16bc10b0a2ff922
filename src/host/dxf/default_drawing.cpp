// The file of a new drawing.
#include "host/dxf/reader.h"
namespace dxf {
std::string default_drawing() { return "  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n"; }
} // namespace dxf
