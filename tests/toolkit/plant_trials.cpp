// Draws plants for the eye, not for the test run: a sheet of small pictures, one for each argument
// NAME[/SEASON[/DETAIL]], as a PPM file. A quick rasteriser with sun, shadows and sky; no renderer.
//   plant_trials SHEET.ppm oak/0 oak/1 oak/2 oak/3 "tall grass/1/2"
// With "cover:NAME" a square of ground cover is drawn.
#include "toolkit/ts_plant.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct V {
    double x = 0, y = 0, z = 0;
};
V operator+(V a, V b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
V operator-(V a, V b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
V operator*(V a, double s) { return {a.x * s, a.y * s, a.z * s}; }
double dot(V a, V b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
V cross(V a, V b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
V unit(V a) { return a * (1 / std::sqrt(std::max(1e-30, dot(a, a)))); }

struct Corner {
    V at, normal;
};
struct Face {
    Corner corners[3];
    CTsColor color;
    bool leaf = false;
};

/// A parallel view: right, up and toward the viewer.
struct View {
    V right, up, back;
    V middle;
    double scale = 1; ///< pixels a metre
    int width = 0, height = 0;

    V project(V p) const {
        const V q = p - middle;
        return {dot(q, right) * scale + width / 2.0, height / 2.0 - dot(q, up) * scale,
                dot(q, back)};
    }
};

View look(V back, V middle, double scale, int width, int height) {
    View view;
    view.back = unit(back);
    view.right = unit(cross({0, 0, 1}, view.back));
    view.up = cross(view.back, view.right);
    view.middle = middle, view.scale = scale, view.width = width, view.height = height;
    return view;
}

/// Calls `pixel(index, depth, a, b, c)` for each pixel of the triangle.
template <typename Pixel>
void fill(const View& view, const Face& face, Pixel&& pixel) {
    V p[3];
    for (int i = 0; i < 3; ++i) {
        p[i] = view.project(face.corners[i].at);
    }
    const double area =
        (p[1].x - p[0].x) * (p[2].y - p[0].y) - (p[2].x - p[0].x) * (p[1].y - p[0].y);
    if (std::abs(area) < 1e-9) {
        return;
    }
    const auto [left, right] = std::minmax({p[0].x, p[1].x, p[2].x});
    const auto [top, bottom] = std::minmax({p[0].y, p[1].y, p[2].y});
    for (int y = std::max(0, static_cast<int>(top));
         y <= std::min(view.height - 1, static_cast<int>(bottom)); ++y) {
        for (int x = std::max(0, static_cast<int>(left));
             x <= std::min(view.width - 1, static_cast<int>(right)); ++x) {
            const double px = x + 0.5, py = y + 0.5;
            const double b =
                ((px - p[0].x) * (p[2].y - p[0].y) - (p[2].x - p[0].x) * (py - p[0].y)) / area;
            const double c =
                ((p[1].x - p[0].x) * (py - p[0].y) - (px - p[0].x) * (p[1].y - p[0].y)) / area;
            const double a = 1 - b - c;
            if (a >= 0 && b >= 0 && c >= 0) {
                pixel(static_cast<std::size_t>(y) * static_cast<std::size_t>(view.width) +
                          static_cast<std::size_t>(x),
                      a * p[0].z + b * p[1].z + c * p[2].z, a, b, c);
            }
        }
    }
}

struct Picture {
    int width = 0, height = 0;
    std::vector<V> pixels;
};

constexpr int samples = 3; ///< along each side of a pixel

Picture draw(const std::vector<Face>& faces, const View& view) {
    const V sun = unit({0.55, 0.65, 0.9}); // from behind the viewer's right
    const auto size = static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height);
    const View light = look(sun, view.middle,
                            0.9 * std::max(view.width, view.height) / samples * view.scale /
                                std::max(view.width, view.height) * 1.6,
                            1400, 1400);
    std::vector<double> shadow(1400 * 1400, -1e9), depth(size, -1e9);
    for (const Face& face : faces) {
        fill(light, face, [&](std::size_t i, double z, double, double, double) {
            shadow[i] = std::max(shadow[i], z);
        });
    }
    Picture picture{view.width, view.height, std::vector<V>(size, V{0.80, 0.87, 0.95})};
    for (const Face& face : faces) {
        fill(view, face, [&](std::size_t i, double z, double a, double b, double c) {
            if (z <= depth[i]) {
                return;
            }
            depth[i] = z;
            const auto mix = [&](V Corner::*part) {
                return face.corners[0].*part * a + face.corners[1].*part * b +
                       face.corners[2].*part * c;
            };
            V normal = unit(mix(&Corner::normal));
            const V at = mix(&Corner::at);
            const bool behind = dot(normal, view.back) < 0;
            normal = behind && face.leaf ? normal * -1 : normal;
            const V s = light.project(at);
            const bool inside = s.x >= 0 && s.y >= 0 && s.x < 1400 && s.y < 1400;
            const double slack = 2.5 / light.scale;
            const bool lit =
                !inside ||
                s.z > shadow[static_cast<std::size_t>(s.y) * 1400 + static_cast<std::size_t>(s.x)] -
                          slack;
            const double facing = dot(normal, sun);
            const double direct = facing > 0 ? facing : face.leaf ? -0.45 * facing : 0;
            const double sky = 0.28 + 0.14 * normal.z;
            const double power = (lit ? 0.95 * direct : 0.04) + sky;
            const auto linear = [](double v) { return std::pow(v, 2.2); };
            picture.pixels[i] = {linear(face.color.r) * power * 1.3,
                                 linear(face.color.g) * power * 1.27,
                                 linear(face.color.b) * power * 1.25};
            V& p = picture.pixels[i];
            p = {std::pow(p.x, 1 / 2.2), std::pow(p.y, 1 / 2.2), std::pow(p.z, 1 / 2.2)};
        });
    }
    return picture;
}

void add(std::vector<Face>& faces, const CTsPlantShape& shape, V at, double turn, double scale) {
    const double c = std::cos(turn), s = std::sin(turn);
    for (const CTsPlantPart& part : shape.parts) {
        for (std::size_t t = 0; t + 2 < part.triangles.size(); t += 3) {
            Face face;
            for (std::size_t k = 0; k < 3; ++k) {
                const std::size_t i = 3 * std::size_t{part.triangles[t + k]};
                const V p{part.positions[i], part.positions[i + 1], part.positions[i + 2]};
                const V n{part.normals[i], part.normals[i + 1], part.normals[i + 2]};
                face.corners[k] = {at + V{c * p.x - s * p.y, s * p.x + c * p.y, p.z} * scale,
                                   {c * n.x - s * n.y, s * n.x + c * n.y, n.z}};
            }
            face.color = part.color;
            face.leaf = part.look != CTsPlantPart::Look::bark;
            faces.push_back(face);
        }
    }
}

void add_ground(std::vector<Face>& faces, double half, const CTsColor& color) {
    const V corners[4] = {{-half, -half, 0}, {half, -half, 0}, {half, half, 0}, {-half, half, 0}};
    for (int t = 0; t < 2; ++t) {
        Face face;
        for (int k = 0; k < 3; ++k) {
            face.corners[k] = {corners[k == 0 ? 0 : k + t], {0, 0, 1}};
        }
        face.color = color;
        faces.push_back(face);
    }
}

struct Order {
    std::string name;
    int season = 1, detail = 1;
    bool cover = false;
};

Order parse(std::string text) {
    Order order;
    order.cover = text.starts_with("cover:");
    text = order.cover ? text.substr(6) : text;
    const std::size_t first = text.find('/');
    order.name = text.substr(0, first);
    if (first != std::string::npos) {
        order.season = text[first + 1] - '0';
        const std::size_t second = text.find('/', first + 1);
        order.detail = second != std::string::npos ? text[second + 1] - '0' : 1;
    }
    return order;
}

Picture draw_cell(const Order& order, int width, int height) {
    const CTsPlantDefinition plant = CTsPlantDefinition::Named(order.name);
    const auto begin = std::chrono::steady_clock::now();
    const CTsPlantShape shape =
        TsGrowPlant(plant, static_cast<CTsSeason>(order.season), order.detail);
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    std::printf("%s/%d/%d: %zu triangles, %zu parts, %.1f ms\n", order.name.c_str(), order.season,
                order.detail, shape.TriangleCount(), shape.parts.size(), ms);
    std::vector<Face> faces;
    double across = plant.m_Diameter, high = plant.m_Height;
    if (order.cover) {
        CTsPlant cover;
        cover.m_Definition = plant;
        cover.m_CoverDensity = std::min(900.0, 4 / (plant.m_Diameter * plant.m_Diameter));
        const double half = 8 * plant.m_Diameter;
        for (const auto& [b, c] : {std::pair<CTsPoint, CTsPoint>{{half, -half, 0}, {half, half, 0}},
                                   {{half, half, 0}, {-half, half, 0}}}) {
            for (const CTsCoverPlace& p :
                 TsScatterCover(cover, {-half, -half, 0}, b, c, 1, 100'000)) {
                add(faces, shape, {p.location.x, p.location.y, p.location.z}, p.rotation, p.scale);
            }
        }
        across = 3 * half, high = 1.6 * half;
        add_ground(faces, half, {0.3, 0.25, 0.18});
    } else {
        add(faces, shape, {}, 0, 1);
        add_ground(faces, 3 * std::max(across, high), {0.52, 0.55, 0.42});
    }
    const double scale =
        samples * std::min(0.92 * width / across, 0.88 * height / (high + 0.12 * across));
    return draw(faces,
                look({0.35, 1, order.cover ? 0.55 : 0.16}, {0, 0, order.cover ? 0 : 0.48 * high},
                     scale, width * samples, height * samples));
}

} // namespace

int main(int argc, char** argv) {
    constexpr int width = 440, height = 520;
    if (argc < 3) {
        std::printf("usage: plant_trials SHEET.ppm NAME[/SEASON[/DETAIL]] ...\n");
        return 2;
    }
    const int count = argc - 2, columns = std::min(count, 4),
              rows = (count + columns - 1) / columns;
    std::vector<unsigned char> sheet(static_cast<std::size_t>(3 * width * columns * height * rows),
                                     255);
    for (int n = 0; n < count; ++n) {
        const Picture cell = draw_cell(parse(argv[n + 2]), width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                V sum;
                for (int k = 0; k < samples * samples; ++k) {
                    const int sx = x * samples + k % samples, sy = y * samples + k / samples;
                    sum = sum + cell.pixels[static_cast<std::size_t>(sy * cell.width + sx)];
                }
                const int at =
                    3 * ((n / columns * height + y) * width * columns + n % columns * width + x);
                const double values[3] = {sum.x, sum.y, sum.z};
                for (int k = 0; k < 3; ++k) {
                    sheet[static_cast<std::size_t>(at + k)] = static_cast<unsigned char>(
                        std::clamp(values[k] / (samples * samples), 0.0, 1.0) * 255);
                }
            }
        }
    }
    std::ofstream out(argv[1], std::ios::binary);
    out << "P6\n" << width * columns << " " << height * rows << "\n255\n";
    out.write(reinterpret_cast<const char*>(sheet.data()),
              static_cast<std::streamsize>(sheet.size()));
    return out ? 0 : 1;
}
