// Jigs: lines of text become samples.
#include "host/ed/jig.h"

#include "host/db/database.h"
#include "host/ed/point_text.h"
#include "host/ed/state.h"

#include <fmt/format.h>

#include <functional>
#include <numbers>

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdJig, AcRxObject)

/// One thing that is asked for.
struct AcEdJig::Request {
    const char* wanted; ///< in words, for an answer that is not understood
    /// Takes the answer; false when it is none.
    std::function<bool(std::string_view)> take;
    bool empty_is_answer = false; ///< where Enter is not kNull
};

AcEdJig::AcEdJig() = default;
AcEdJig::~AcEdJig() = default;

AcEdJig::DragStatus AcEdJig::drag() {
    const DragStatus status = sampler();
    if (status == kNormal) {
        update();
    }
    // An unchanged sample is accepted like any other: its line was the user's press.
    return status == kNoChange ? kNormal : status;
}

AcEdJig::DragStatus AcEdJig::sampler() { return kNormal; }
bool AcEdJig::update() { return false; }
AcDbEntity* AcEdJig::entity() const { return nullptr; }
std::unique_ptr<AcDbEntity> AcEdJig::releaseEntity() { return nullptr; }

AcDbObjectId AcEdJig::append() {
    AcDbDatabase* database = acdbCurDwg();
    AcDbObjectId id;
    if (database == nullptr) {
        return id;
    }
    const AcDbObjectPointer<AcDbBlockTableRecord> space(database->modelSpaceId(), AcDb::kForWrite);
    if (space) {
        if (std::unique_ptr<AcDbEntity> released = releaseEntity()) {
            space->appendAcDbEntity(std::move(released), id);
        }
    }
    return id;
}

AcEdJig::DragStatus AcEdJig::acquire(const Request& request) {
    while (const auto line = ed::next_answer(prompt_)) {
        if (ed::is_cancel(*line)) {
            break;
        }
        const std::string_view answer = ed::trimmed(*line);
        if (answer.empty() && has(kNullResponseAccepted)) {
            return kNull;
        }
        if (const auto keyword = ed::match_keyword(keywords_, answer)) {
            return static_cast<DragStatus>(kKW1 + static_cast<int>(keyword->index));
        }
        if ((!answer.empty() || request.empty_is_answer) && request.take(answer)) {
            return kNormal;
        }
        if (has(kAcceptOtherInputString) && !answer.empty()) {
            other_input_ = answer;
            return kOther;
        }
        const std::string words = ed::keyword_names(keywords_);
        acutPrintf(words.empty()
                       ? fmt::format("\nRequires {}.", request.wanted)
                       : fmt::format("\nRequires {}, or one of: {}.", request.wanted, words));
    }
    if (!has(kDontEchoCancelForCtrlC)) {
        acutPrintf("\n*Cancel*");
    }
    return kCancel;
}

bool AcEdJig::acceptsNumber(double number) const {
    return !(has(kNoZeroResponseAccepted) && number == 0) &&
           !(has(kNoNegativeResponseAccepted) && number < 0);
}

AcEdJig::DragStatus AcEdJig::acquirePointFrom(AcGePoint3d& point, const AcGePoint3d& base) {
    const bool spatial = has(kAccept3dCoordinates);
    const ed::PointFrame frame{ed::state().ucs, base, spatial};
    return acquire(
        {spatial ? "a point as x,y or x,y,z" : "a point as x,y", [&](std::string_view answer) {
             const auto found = ed::parse_point(answer, frame);
             if (found) {
                 point = *found;
                 if (!has(kDontUpdateLastPoint)) {
                     ed::state().last_point = point;
                 }
             }
             return found.has_value();
         }});
}

AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& point) {
    return acquirePointFrom(point, AcGePoint3d(ed::state().last_point));
}
AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& point, const AcGePoint3d& base) {
    return acquirePointFrom(point, AcGePoint3d(base)); // the same object may be meant by both
}

AcEdJig::DragStatus AcEdJig::acquireDistFrom(double& distance, const AcGePoint3d& base) {
    const ed::PointFrame frame{ed::state().ucs, base, true};
    return acquire({"a distance or a point", [&](std::string_view answer) {
                        auto number = ed::parse_number(answer);
                        if (const auto point = ed::parse_point(answer, frame); point) {
                            number = point->distanceTo(base);
                        }
                        if (!number || !acceptsNumber(*number)) {
                            return false;
                        }
                        distance = *number;
                        return true;
                    }});
}

AcEdJig::DragStatus AcEdJig::acquireDist(double& distance) {
    return acquireDistFrom(distance, AcGePoint3d(ed::state().last_point));
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& distance, const AcGePoint3d& base) {
    return acquireDistFrom(distance, base);
}

AcEdJig::DragStatus AcEdJig::acquireAngleFrom(double& angle, const AcGePoint3d& base) {
    constexpr double kTurn = 2 * std::numbers::pi;
    const ed::PointFrame frame{ed::state().ucs, base, true};
    return acquire({"an angle in degrees or a point", [&](std::string_view answer) {
                        auto radians = ed::parse_number(answer);
                        if (radians) {
                            *radians *= std::numbers::pi / 180;
                        } else if (const auto point = ed::parse_point(answer, frame); point) {
                            const AcGeVector3d way =
                                (*point - base).transformedBy(frame.ucs.inverse());
                            const double direction = std::atan2(way.y, way.x);
                            radians = direction < 0 ? direction + kTurn : direction;
                        }
                        if (!radians || !acceptsNumber(*radians)) {
                            return false;
                        }
                        angle = *radians;
                        return true;
                    }});
}

AcEdJig::DragStatus AcEdJig::acquireAngle(double& angle) {
    return acquireAngleFrom(angle, AcGePoint3d(ed::state().last_point));
}
AcEdJig::DragStatus AcEdJig::acquireAngle(double& angle, const AcGePoint3d& base) {
    return acquireAngleFrom(angle, base);
}

AcEdJig::DragStatus AcEdJig::acquireString(std::string& text) {
    const auto take = [&](std::string_view answer) {
        const std::size_t end =
            has(kAnyBlankTerminatesInput) ? answer.find_first_of(" \t") : std::string_view::npos;
        text = answer.substr(0, end);
        return true;
    };
    return acquire({"a text", take, true});
}
