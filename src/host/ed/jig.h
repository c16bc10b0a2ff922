// Jigs: placing something by points, numbers and keywords while it is seen.
//
// A sample comes from the input port as one line of text, so that a script, a test and a window
// drive the same jig: each drag takes one sample, and accepts it.
#pragma once

#include "host/db/object_id.h"
#include "host/ed/ed.h"
#include "host/ge/ge.h"
#include "host/rx/rxobject.h"

#include <memory>
#include <string>

class AcDbEntity;

/// The base of jigs. A jig overrides `sampler` (acquire something, note it), `update` (change the
/// entity by what was noted) and `entity`.
class AcEdJig : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdJig)
public:
    /// How a sample or a drag ended. Keywords count from kKW1 in the order of the list, beyond
    /// kKW9 too.
    enum DragStatus : int {
        kModeless = -17,
        kNoChange = -6, ///< of samplers: as before, no update is needed
        kCancel = -4,   ///< escape, "^C", or the end of input
        kOther = -3,    ///< other text, see kAcceptOtherInputString
        kNull = -1,     ///< Enter
        kNormal = 0,
        kKW1 = 1,
        kKW2,
        kKW3,
        kKW4,
        kKW5,
        kKW6,
        kKW7,
        kKW8,
        kKW9
    };
    /// What the window's cursor looks like; a text port does not care.
    enum CursorType {
        kNoSpecialCursor = -1,
        kCrosshair = 0,
        kRectCursor,
        kRubberBand,
        kNotRotated,
        kTargetBox,
        kRotatedCrosshair,
        kCrosshairNoRotate,
        kInvisible,
        kEntitySelect,
        kParallelogram,
        kEntitySelectNoPersp,
        kPkfirstOrGrips
    };
    enum UserInputControls {
        kGovernedByOrthoMode = 0x1,
        kNullResponseAccepted = 0x2,    ///< Enter is kNull; without it, it is asked again
        kDontEchoCancelForCtrlC = 0x4,  ///< no "*Cancel*"
        kDontUpdateLastPoint = 0x8,     ///< "@" goes on counting from the point before
        kNoDwgLimitsChecking = 0x10,    ///< limits are never checked here
        kNoZeroResponseAccepted = 0x20, ///< of distances and angles
        kNoNegativeResponseAccepted = 0x40,
        kAccept3dCoordinates = 0x80, ///< points may have a z
        kAcceptMouseUpAsPoint = 0x100,
        kAnyBlankTerminatesInput = 0x200, ///< strings end at their first blank
        kInitialBlankTerminatesInput = 0x400,
        kAcceptOtherInputString = 0x800 ///< text that means nothing here is kOther, see otherInput
    };

    AcEdJig();
    ~AcEdJig() override;
    AcEdJig(const AcEdJig&) = delete;
    AcEdJig& operator=(const AcEdJig&) = delete;

    /// Samples once and, when that is a new place, updates. kNormal for an accepted sample,
    /// otherwise what the sampler said.
    DragStatus drag();
    virtual DragStatus sampler();
    /// True when something changed that is to be drawn again.
    virtual bool update();
    /// What is dragged; null for a jig without one.
    virtual AcDbEntity* entity() const;
    /// Puts the entity into the current drawing's model space, which owns it from then on. Null
    /// when there is no drawing or `releaseEntity` gives nothing.
    AcDbObjectId append();

    const std::string& dispPrompt() const { return prompt_; }
    void setDispPrompt(std::string prompt) { prompt_ = std::move(prompt); }
    /// Words as acedGetKword takes them: "BEAM,B TARGET,T" or "Beam Target".
    const std::string& keywordList() const { return keywords_; }
    void setKeywordList(std::string keywords) { keywords_ = std::move(keywords); }
    int userInputControls() const { return controls_; }
    /// A sum of UserInputControls; none to begin with.
    void setUserInputControls(int controls) { controls_ = controls; }
    CursorType specialCursorType() const { return cursor_; }
    void setSpecialCursorType(CursorType cursor) { cursor_ = cursor; }
    /// The text of the last kOther.
    const std::string& otherInput() const { return other_input_; }

protected:
    /// A point in world coordinates, typed in the current coordinate system of the user: see
    /// ed::parse_point. "@" counts from `base` where it is given, else from the last point. Only
    /// kNormal changes the value, here and below.
    DragStatus acquirePoint(AcGePoint3d& point);
    DragStatus acquirePoint(AcGePoint3d& point, const AcGePoint3d& base);
    /// A distance: a number, or a point whose distance from the base (or last point) counts.
    DragStatus acquireDist(double& distance);
    DragStatus acquireDist(double& distance, const AcGePoint3d& base);
    /// An angle in radians, typed in degrees, or a point: the direction from the base (or last
    /// point) to it, in the user's plane, counter-clockwise from the X axis, 0 to 2 pi.
    DragStatus acquireAngle(double& angle);
    DragStatus acquireAngle(double& angle, const AcGePoint3d& base);
    /// A line of text; kNormal with an empty text for Enter when that is not kNull.
    DragStatus acquireString(std::string& text);
    /// What `append` puts into the drawing: a jig that made its entity hands it over.
    virtual std::unique_ptr<AcDbEntity> releaseEntity();

private:
    struct Request;
    DragStatus acquire(const Request& request);
    DragStatus acquirePointFrom(AcGePoint3d& point, const AcGePoint3d& base);
    DragStatus acquireDistFrom(double& distance, const AcGePoint3d& base);
    DragStatus acquireAngleFrom(double& angle, const AcGePoint3d& base);
    bool has(UserInputControls control) const { return (controls_ & control) != 0; }
    bool acceptsNumber(double number) const;

    std::string prompt_, keywords_, other_input_;
    int controls_ = 0;
    CursorType cursor_ = kNoSpecialCursor;
};
