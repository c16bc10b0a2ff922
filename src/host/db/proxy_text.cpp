// Texts of stored graphics.
#include "host/db/database_impl.h"
#include "host/db/draw_util.h"
#include "host/db/proxy_replay.h"
#include "host/db/text_drawing.h"

namespace proxy {

std::string Replay::decoded(const std::string& bytes) const {
    const dxf::Document* document =
        database_ != nullptr ? DxfAccess::impl(*database_).document.get() : nullptr;
    return document != nullptr ? document->encoding.decode(bytes) : bytes;
}

void Replay::drawText(Bytes& in, bool unicode, bool styled) {
    const auto string = [&] { return unicode ? in.unicode() : decoded(in.text()); };
    draw::TextLine line;
    line.origin = in.point();
    line.normal = draw::unitNormal(in.vector());
    line.direction = in.vector();
    if (styled) {
        line.text = string();
        in.i32(); // its length again
        line.raw = in.u32() != 0;
    }
    line.height = in.real();
    line.width_factor = in.real();
    line.oblique = in.real();
    if (styled) {
        line.tracking = in.real();
        if (in.u32() != 0) { // mirror writing
            line.width_factor = -line.width_factor;
        }
        line.upside_down = in.u32() != 0;
        line.vertical = in.u32() != 0;
        line.underline = in.u32() != 0;
        line.overline = in.u32() != 0;
        if (unicode) {
            line.font.bold = in.u32() != 0;
            line.font.italic = in.u32() != 0;
            in.integers(2); // character set and pitch
            line.font.family = string();
        }
        line.font.file = string();
    } else {
        line.text = string();
    }
    if (in.failed()) {
        return;
    }
    if (!isThick()) {
        outcome_.texts = true;
    } else {
        draw::noteFont(line.font, outcome_.fonts);
        const bool drawn = draw::thickText(draw_, line, traits().thickness());
        outcome_.faces = outcome_.faces || drawn;
    }
}

void Replay::text(Bytes& in) { drawText(in, false, false); }
void Replay::text2(Bytes& in) { drawText(in, false, true); }
void Replay::unicodeText(Bytes& in) { drawText(in, true, false); }
void Replay::unicodeText2(Bytes& in) { drawText(in, true, true); }

} // namespace proxy
