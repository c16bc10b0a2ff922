// Streams with blocks at chosen places, for the tests of copies.
#pragma once

#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <string>
#include <vector>

namespace batch_test {

using KestraBatch::Similarity;
using KestraBatch::Triple;

inline Similarity moved(double x, double y, double z, double degrees = 0, double scale = 1,
                        bool mirrored = false) {
    const double a = degrees * 3.14159265358979323846 / 180, s = mirrored ? -1 : 1;
    const double c = std::cos(a), n = std::sin(a), t = std::cos(0.3), u = std::sin(0.3);
    // about Z, mirrored in x or not; then, when turned at all, tipped by a fixed angle about X
    Similarity place;
    place.turn = {{{c * s, -n, 0}, {n * s, c, 0}, {0, 0, 1}}};
    if (degrees != 0) {
        place.turn = {{{c * s, -n, 0}, {t * n * s, t * c, -u}, {u * n * s, u * c, t}}};
    }
    place.scale = scale;
    place.shift = {x, y, z};
    return place;
}

/// A lump of 5 by 5 points on a bent sheet with a tail: nothing of it is symmetric.
struct Lump {
    std::string head = "COLR;8040\nCOLN;256\nMATL;0\n"; ///< records ahead of the vertices
    double bump = 0;                                    ///< added to one vertex
    bool normals = true;
    int drop_face = -1;

    static constexpr int side = 5;
    std::vector<Triple> points() const {
        std::vector<Triple> all;
        for (int i = 0; i < side * side; ++i) {
            const double u = i % side, v = i / side;
            all.push_back({0.1 * u + 0.02 * v, 0.13 * v, 0.05 * u * u - 0.03 * v + 0.011 * u * v});
        }
        all[17].z += bump;
        return all;
    }
    /// Of the vertex; some unit vector that goes with the shape.
    static Triple normal(const Triple& p) {
        const Triple n{-0.3 * p.x, 0.2 - p.y, 1};
        const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
        return {n.x / length, n.y / length, n.z / length};
    }

    std::string mesh(const Similarity& place) const {
        std::string text = "MESH;\n" + head;
        int index = 0;
        for (const Triple& p : points()) {
            const Triple q = place.point(p), n = place.direction(normal(p));
            if (normals) {
                text += fmt::format("NORM;({:.9g},{:.9g},{:.9g})\n", n.x, n.y, n.z);
            }
            text += fmt::format("VERT;({:.9g},{:.9g}, {:.9g})\nADDV;{}\n", q.x, q.y, q.z, index++);
        }
        for (int i = 0; i < (side - 1) * (side - 1); ++i) {
            if (i == drop_face) {
                continue;
            }
            const int a = i / (side - 1) * side + i % (side - 1);
            text += fmt::format("FACE;{},{},{}\nFACE;{},{},{}\n", a, a + 1, a + side + 1, a,
                                a + side + 1, a + side);
        }
        return text + "EMSH;\n";
    }
};

inline std::string block(const std::string& name, const std::string& content) {
    return "BLOK;" + name + "\nBLYR;0\n" + content + "EBLK;" + name + "\n";
}

/// As writers do: the bracket opens behind the preamble of the first mesh inside.
inline std::string late_block(const std::string& name, const std::string& content) {
    const std::size_t first = std::min(content.find("NORM"), content.find("VERT"));
    return content.substr(0, first) + "BLOK;" + name + "\nBLYR;0\n" + content.substr(first) +
           "EBLK;" + name + "\n";
}

inline KestraBatch::StreamModel model_of(const std::string& body, bool find_copies = true) {
    KestraBatch::WarningList warnings;
    KestraBatch::StreamModel model;
    if (find_copies) {
        model.find_copies();
    }
    KestraBatch::read_stream(body + "END;\n", "s", model, warnings);
    return model;
}

} // namespace batch_test
