// The state of one replay of stored graphics. Only its own sources include this.
#pragma once

#include "host/db/proxy_graphics.h"
#include "host/db/proxy_stream.h"
#include "host/gi/clip.h"

#include <deque>
#include <string>

namespace proxy {

class Replay {
public:
    Replay(AcGiWorldDraw* draw, AcDbDatabase* database);
    ~Replay();
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;
    Outcome run(std::string_view graphics);

private:
    struct Row;
    static const Row kRows[];
    /// Handles one chunk; a read that fails in it tells damage.
    void chunk(std::uint32_t type, Bytes& in);

    // Curves and faces.
    void circle(Bytes& in);
    void circle3Points(Bytes& in);
    void arc(Bytes& in);
    void arc3Points(Bytes& in);
    void ellipticalArc(Bytes& in);
    void polyline(Bytes& in);
    void polylineWithNormal(Bytes& in);
    void polygon(Bytes& in);
    void lwPolyline(Bytes& in);
    void mesh(Bytes& in);
    void shell(Bytes& in);
    void text(Bytes& in);
    void text2(Bytes& in);
    void unicodeText(Bytes& in);
    void unicodeText2(Bytes& in);
    void endless(Bytes& in);

    // What holds for all that follows.
    void color(Bytes& in);
    void trueColor(Bytes& in);
    void layer(Bytes& in);
    void lineType(Bytes& in);
    void fill(Bytes& in);
    void thickness(Bytes& in);
    void material(Bytes& in);
    void pushClip(Bytes& in);
    void popClip(Bytes& in);
    void pushTransform(Bytes& in);
    void popTransform(Bytes& in);

    struct FaceData;
    struct ShellPart;
    void drawArc(const gi::Arc& arc, std::uint32_t kind);
    void drawFaces(std::span<const AcGePoint3d> points, std::span<const std::int32_t> faces,
                   const FaceData& data);
    void drawText(Bytes& in, bool unicode, bool styled);
    void setColor(const AcCmEntityColor& color);
    void setColorIndex(std::int32_t index);
    void setLayerIndex(std::int32_t index);
    AcGiSubEntityTraits& traits() const { return draw_->subEntityTraits(); }
    bool isThick() const { return traits().thickness() != 0; }
    void noteCurve(bool extruded) { (extruded ? outcome_.faces : outcome_.curves) = true; }
    std::string decoded(const std::string& bytes) const;

    AcGiWorldDraw* draw_;
    AcDbDatabase* database_;
    AcGeMatrix3d from_world_; ///< to the coordinates that the entity is drawn in
    Outcome outcome_;
    std::uint32_t fill_ = 0;
    int transforms_ = 0;
    std::deque<gi::ClipScope> clips_;
    // As they were before.
    AcCmEntityColor color_;
    AcDbObjectId layer_, line_type_, material_;
    double thickness_;
};

} // namespace proxy
