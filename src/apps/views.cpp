// Framing: cameras for the standard directions, named views and cameras told in words.
#include "apps/views.h"

#include "host/db/block_reference.h"
#include "host/db/references.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

namespace apps {
namespace {

constexpr double kMargin = 1.05;     // room around the box, as a factor on its picture
constexpr double kDefaultFov = 50.0; // degrees across the width: a moderate wide angle
constexpr double kFlatRatio = 0.02;  // lower than this share of its width, a model is a plan

struct CameraFrame {
    AcGeVector3d right, up, forward;
};

CameraFrame frame_of(const AcGeVector3d& direction) {
    const AcGeVector3d forward = -direction.normal();
    const bool vertical = std::abs(forward.x) < 1e-9 && std::abs(forward.y) < 1e-9;
    const AcGeVector3d world_up = vertical ? AcGeVector3d::kYAxis : AcGeVector3d::kZAxis;
    const AcGeVector3d right = forward.crossProduct(world_up).normal();
    return {right, right.crossProduct(forward).normal(), forward};
}

AcGePoint3d center_of(const AcDbExtents& box) {
    const AcGePoint3d& low = box.minPoint();
    return low + (box.maxPoint() - low) * 0.5;
}

/// The corners of the box relative to its centre, in the camera's axes.
std::array<AcGeVector3d, 8> corners_in(const AcDbExtents& box, const CameraFrame& frame) {
    std::array<AcGeVector3d, 8> corners;
    const AcGeVector3d half = (box.maxPoint() - box.minPoint()) * 0.5;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGeVector3d v{(i & 1) != 0 ? half.x : -half.x, (i & 2) != 0 ? half.y : -half.y,
                             (i & 4) != 0 ? half.z : -half.z};
        corners[i] = {v.dotProduct(frame.right), v.dotProduct(frame.up),
                      v.dotProduct(frame.forward)};
    }
    return corners;
}

/// A box that has a size in every direction that matters for framing.
AcDbExtents grown(const AcDbExtents& box) {
    AcDbExtents result = box;
    if (box.isEmpty()) {
        result.addPoint({-1, -1, -1});
        result.addPoint({1, 1, 1});
    } else if ((box.maxPoint() - box.minPoint()).length() < 1e-9) {
        result.addPoint(box.minPoint() - AcGeVector3d{1, 1, 1});
        result.addPoint(box.minPoint() + AcGeVector3d{1, 1, 1});
    }
    return result;
}

AcGeVector3d direction_from(double azimuth_degrees, double elevation_degrees) {
    const double azimuth = azimuth_degrees * std::numbers::pi / 180;
    const double elevation = elevation_degrees * std::numbers::pi / 180;
    return {std::sin(azimuth) * std::cos(elevation), std::cos(azimuth) * std::cos(elevation),
            std::sin(elevation)};
}

struct StandardView {
    const char* name;
    AcGeVector3d direction; ///< from the scene towards the camera
};
const std::array<StandardView, 4> kStandardViews{{
    {"top", {0, 0, 1}},
    {"front", {0, -1, 0}},
    {"right", {1, 0, 0}},
    {"iso", {1, -1, 1}},
}};

bool is_rendered_space_entity(const AcDbEntity& entity) {
    if (entity.isInPaperSpace() || entity.visibility() == AcDb::kInvisible) {
        return false;
    }
    AcDbObjectPointer<AcDbLayerTableRecord> layer(entity.layerId());
    return !layer || (!layer->isOff() && !layer->isFrozen());
}

/// Boxes around what gives faces. A block's box is computed once, in its own coordinates.
class FaceBoxes {
public:
    AcDbExtents of(const AcDbEntity& entity) {
        const auto* reference = AcDbBlockReference::cast(&entity);
        if (reference == nullptr) {
            AcDbExtents box;
            if (entity.notRenderedReason() != nullptr || entity.getGeomExtents(box) != Acad::eOk) {
                return {};
            }
            return box;
        }
        const AcDbExtents block = of_block(acdbBlockContents(reference->blockTableRecord()).block);
        AcDbExtents result;
        const auto add = [&](const AcGeMatrix3d& transform) {
            AcDbExtents box = block;
            box.transformBy(transform);
            result.addExt(box);
        };
        if (block.isEmpty()) {
            return result;
        }
        if (const auto* array = AcDbMInsertBlock::cast(&entity)) {
            for (const int row : {0, array->rows() - 1}) {
                for (const int column : {0, array->columns() - 1}) {
                    add(array->memberTransform(row, column));
                }
            }
        } else {
            add(reference->blockTransform());
        }
        return result;
    }

private:
    AcDbExtents of_block(AcDbObjectId id) {
        constexpr int kDeepest = 64; // the host draws no deeper either
        // A block that is being measured has an empty box already: cycles end there.
        const auto [entry, is_new] = boxes_.try_emplace(id);
        if (!is_new || depth_ >= kDeepest) {
            return entry->second;
        }
        AcDbObjectPointer<AcDbBlockTableRecord> block(id);
        AcDbExtents box;
        ++depth_;
        for (const AcDbObjectId& member : block ? block->entities() : std::vector<AcDbObjectId>()) {
            AcDbObjectPointer<AcDbEntity> entity(member);
            if (entity && is_rendered_space_entity(*entity)) {
                box.addExt(of(*entity));
            }
        }
        --depth_;
        return boxes_[id] = box;
    }

    std::unordered_map<AcDbObjectId, AcDbExtents> boxes_;
    int depth_ = 0;
};

bool parse_triple(std::string_view text, std::array<double, 3>& values) {
    for (std::size_t i = 0; i < 3; ++i) {
        const auto [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), values[i]);
        if (error != std::errc() || !std::isfinite(values[i])) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (i < 2) {
            if (text.empty() || text.front() != ',') {
                return false;
            }
            text.remove_prefix(1);
        }
    }
    return text.empty();
}

bool parse_camera(std::string_view text, double aspect, AcGsView& view, std::string& error) {
    std::array<double, 3> eye{}, target{};
    bool has_eye = false, has_target = false;
    double fov = kDefaultFov;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(';'), text.size());
        const std::string_view part = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t equals = part.find('=');
        const std::string_view key = part.substr(0, equals);
        const std::string_view value = equals == part.npos ? "" : part.substr(equals + 1);
        bool good = false;
        if (key == "eye") {
            good = has_eye = parse_triple(value, eye);
        } else if (key == "target") {
            good = has_target = parse_triple(value, target);
        } else if (key == "fov") {
            const auto [last, failed] =
                std::from_chars(value.data(), value.data() + value.size(), fov);
            good = failed == std::errc() && last == value.data() + value.size() && fov >= 1 &&
                   fov <= 170;
        }
        if (!good) {
            error =
                fmt::format("'{}' is not eye=x,y,z, target=x,y,z or fov=degrees (1 to 170)", part);
            return false;
        }
    }
    if (!has_eye || !has_target || eye == target) {
        error = "a camera needs an eye and a target that differ";
        return false;
    }
    view.position = {eye[0], eye[1], eye[2]};
    view.target = {target[0], target[1], target[2]};
    view.up = frame_of(view.position - view.target).up;
    view.perspective = true;
    view.field_width =
        2 * view.position.distanceTo(view.target) * std::tan(fov * std::numbers::pi / 360);
    view.field_height = view.field_width / aspect;
    return true;
}

/// True when the active view looks straight down without perspective: a plan.
bool is_plan(const AcGsView& view) {
    const AcGeVector3d direction = (view.position - view.target).normal();
    return !view.perspective && std::abs(direction.x) < 1e-6 && std::abs(direction.y) < 1e-6;
}

AcGsView automatic_view(const AcDbExtents& box, double aspect) {
    const AcGeVector3d size = box.maxPoint() - box.minPoint();
    const bool flat = size.z < kFlatRatio * std::max(size.x, size.y);
    // From the south-east; a plan is looked at from higher up.
    return frame_perspective(box, direction_from(142, flat ? 55 : 24),
                             kDefaultFov * std::numbers::pi / 180, aspect);
}

} // namespace

AcDbExtents rendered_extents(AcDbDatabase& database) {
    AcDbExtents solid, all;
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId());
    if (!space) {
        return grown(all);
    }
    FaceBoxes boxes;
    for (const AcDbObjectId& id : space->entities()) {
        AcDbObjectPointer<AcDbEntity> entity(id);
        AcDbExtents box;
        if (!entity || !is_rendered_space_entity(*entity)) {
            continue;
        }
        solid.addExt(boxes.of(*entity));
        if (solid.isEmpty() && entity->getGeomExtents(box) == Acad::eOk) {
            all.addExt(box);
        }
    }
    return grown(solid.isEmpty() ? all : solid);
}

AcGsView frame_perspective(const AcDbExtents& box, const AcGeVector3d& direction,
                           double field_of_view, double aspect) {
    const CameraFrame frame = frame_of(direction);
    const auto corners = corners_in(box, frame);
    const double tan_x = std::tan(field_of_view / 2) / kMargin;
    const double tan_y = tan_x / aspect;
    // Alternate between the distance that the widest corner asks for and the offset that centres
    // the picture; four rounds settle to far less than a pixel.
    double distance = 0, offset_x = 0, offset_y = 0;
    for (int round = 0; round < 4; ++round) {
        distance = 0;
        for (const AcGeVector3d& c : corners) {
            distance = std::max({distance, std::abs(c.x - offset_x) / tan_x - c.z,
                                 std::abs(c.y - offset_y) / tan_y - c.z});
        }
        double low_x = 1e300, high_x = -1e300, low_y = 1e300, high_y = -1e300;
        for (const AcGeVector3d& c : corners) {
            const double depth = std::max(c.z + distance, 1e-9);
            low_x = std::min(low_x, (c.x - offset_x) / depth);
            high_x = std::max(high_x, (c.x - offset_x) / depth);
            low_y = std::min(low_y, (c.y - offset_y) / depth);
            high_y = std::max(high_y, (c.y - offset_y) / depth);
        }
        offset_x += (low_x + high_x) / 2 * distance;
        offset_y += (low_y + high_y) / 2 * distance;
    }
    AcGsView view;
    view.target = center_of(box) + frame.right * offset_x + frame.up * offset_y;
    view.position = view.target - frame.forward * distance;
    view.up = frame.up;
    view.perspective = true;
    view.field_width = 2 * distance * std::tan(field_of_view / 2);
    view.field_height = view.field_width / aspect;
    return view;
}

AcGsView frame_parallel(const AcDbExtents& box, const AcGeVector3d& direction, double aspect) {
    const CameraFrame frame = frame_of(direction);
    double half_x = 0, half_y = 0, half_z = 0;
    for (const AcGeVector3d& c : corners_in(box, frame)) {
        half_x = std::max(half_x, std::abs(c.x));
        half_y = std::max(half_y, std::abs(c.y));
        half_z = std::max(half_z, std::abs(c.z));
    }
    const double radius = std::hypot(half_x, half_y, half_z);
    AcGsView view;
    view.target = center_of(box);
    view.position = view.target - frame.forward * (2 * radius);
    view.up = frame.up;
    view.field_height = 2 * kMargin * std::max(half_y, half_x / aspect);
    view.field_width = view.field_height * aspect;
    return view;
}

namespace {

/// Views of drawings may cut the model by planes across the line of sight; pictures do not.
std::string remark_of(AcDbObjectId id) {
    const AcDbObjectPointer<AcDbAbstractViewTableRecord> record(id);
    const bool clips = record && (record->frontClipEnabled() || record->backClipEnabled());
    return clips
               ? fmt::format("the view '{}' has clipping planes; the picture shows what they hide",
                             record->getName())
               : std::string();
}

} // namespace

bool resolve_view(AcDbDatabase& database, const std::string& word, double aspect,
                  ResolvedView& resolved, std::string& error) {
    resolved.name = word;
    resolved.remark.clear();
    if (word == "auto" || word == "current") {
        const bool good = acgsGetViewParameters(database.activeViewportId(), resolved.view);
        if (word == "current" ? good : good && !is_plan(resolved.view)) {
            resolved.remark = remark_of(database.activeViewportId());
            return true;
        }
        if (word == "current") {
            error = "the drawing has no active view";
            return false;
        }
        resolved.view = automatic_view(rendered_extents(database), aspect);
        return true;
    }
    if (word.find('=') != std::string::npos) {
        resolved.name = "camera";
        return parse_camera(word, aspect, resolved.view, error);
    }
    for (const StandardView& standard : kStandardViews) {
        if (word == standard.name) {
            resolved.view = frame_parallel(rendered_extents(database), standard.direction, aspect);
            return true;
        }
    }
    AcDbObjectId id;
    if (database.viewTable().getAt(word, id) == Acad::eOk &&
        acgsGetViewParameters(id, resolved.view)) {
        resolved.remark = remark_of(id);
        return true;
    }
    std::string names;
    for (const AcDbObjectId& view : database.viewTable().records()) {
        AcDbObjectPointer<AcDbViewTableRecord> record(view);
        if (record) {
            names += (names.empty() ? "" : ", ") + record->getName();
        }
    }
    error = fmt::format("there is no view '{}'; the drawing has {}", word,
                        names.empty() ? "no named views" : names);
    return false;
}

} // namespace apps
