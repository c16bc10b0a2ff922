// Damaged stored graphics: what stands before the damage is drawn, nothing else happens.
#include "encoder.h"

#include "../draw/drawing.h"
#include "host/db/proxy_graphics.h"
#include "host/gi/fallback.h"

using encode::Data;
using encode::Graphics;
using testing::SizeIs;

namespace {

/// Something of everything, each chunk small.
Graphics everything() {
    const Data line = Data().points({{0, 0, 0}, {1, 2, 3}});
    const Data place = Data().point(5, 0, 0).point(0, 0, 1).point(0, 1, 0);
    Data text = place;
    text.bytes += Data().reals({2, 1, 0}).unicode(u"Ik").bytes;
    Data shell = Data().points({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}});
    shell.u32(5).integers({4, 0, 1, 2, 3}).u32(0x40).integers({1, 0, 1, 1});
    shell.u32(0x83).integers({2, 0}).point(0, 0, 1).u32(0);
    Data grid = Data().u32(2).u32(2);
    for (int i = 0; i < 4; ++i) {
        grid.point(i % 2, i / 2, 0);
    }
    encode::Bits bits;
    bits.bitShort(16).bitLong(2).bitLong(2).raw(0).raw(0).changed(3, 0).changed(4, 0);
    bits.bitDouble(1).bitDouble(0);
    Data polyline = Data().u32(static_cast<std::uint32_t>(bits.bytes.size()));
    polyline.bytes += bits.bytes;
    const Data clip = Data()
                          .point(0, 0, 1)
                          .point(0, 0, 0)
                          .u32(3)
                          .reals({0, 0, 8, 0, 0, 8})
                          .matrix({})
                          .matrix({})
                          .integers({1, 1})
                          .reals({5, -5})
                          .u32(1);
    return Graphics()
        .add(14, Data().u32(1))
        .add(16, Data().u32(0))
        .add(25, Data().real(2))
        .add(2, Data().point(1, 2, 3).real(4).point(0, 0, 1))
        .add(29, Data().matrix(AcGeMatrix3d::translation({1, 1, 0})))
        .add(6, line)
        .add(27, clip)
        .add(9, shell)
        .add(36, text)
        .add(28)
        .add(31)
        .add(8, grid.u32(0).u32(0).u32(0))
        .add(33, polyline)
        .add(5, Data().point(0, 3, 0).point(3, 0, 0).point(-3, 0, 0).u32(2))
        .add(44, Data().point(1, 1, 0).point(0, 0, 1).reals({4, 2, 0, 1, 0}).u32(0))
        .add(99, Data().u32(7));
}

void expectSound(const gi::Recorder& recorder) {
    for (const gi::RecordedCall& call : recorder.calls) {
        EXPECT_TRUE(gi::isFinite(call.points));
        for (const std::int32_t index : call.faces) {
            EXPECT_LT(index, static_cast<std::int32_t>(call.points.size()) + 1);
        }
    }
}

TEST(ProxyDamage, ACutLeavesTheChunksBeforeIt) {
    Drawing drawing;
    const std::string whole = everything().bytes();
    gi::Recorder all(&drawing.db);
    ASSERT_FALSE(proxy::replay(&all, whole, &drawing.db).damaged);
    ASSERT_GE(all.calls.size(), 9U);
    std::size_t before = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        gi::Recorder recorder(&drawing.db);
        const auto outcome = proxy::replay(&recorder, whole.substr(0, size), &drawing.db);
        EXPECT_TRUE(outcome.damaged) << size;
        EXPECT_GE(recorder.calls.size(), before) << size; // never less for more bytes
        before = recorder.calls.size();
        expectSound(recorder);
        EXPECT_EQ(recorder.geometry().getModelToWorldTransform(), AcGeMatrix3d());
    }
    EXPECT_EQ(before, all.calls.size()); // only the unknown chunk was missing at last
}

TEST(ProxyDamage, NoByteLeadsAstray) {
    Drawing drawing;
    const std::string whole = everything().bytes();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int flip : {0x01, 0x80, 0xff}) {
            std::string bytes = whole;
            bytes[at] = static_cast<char>(bytes[at] ^ flip);
            gi::Recorder recorder(&drawing.db);
            proxy::replay(&recorder, bytes, &drawing.db);
            expectSound(recorder);
            EXPECT_EQ(recorder.subEntityTraits().thickness(), 0);
        }
    }
}

TEST(ProxyDamage, CountsThatCannotBeAreNotBelieved) {
    Drawing drawing;
    gi::Recorder recorder(&drawing.db);
    const Data bad[] = {
        Data().u32(0x7fffffff).point(0, 0, 0),                            // points
        Data().points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).u32(0xffffffff), // faces
        Data().points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).u32(4).integers({3, 0, 1, 3}).u32(0),
        Data().points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).u32(4).integers({-3, 0, 1, 2}).u32(0),
        Data().points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).u32(4).integers({4, 0, 1, 2}).u32(0),
        Data().points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).u32(1).i32(-2147483647 - 1)};
    for (const Data& shell : bad) {
        EXPECT_TRUE(proxy::replay(&recorder, Graphics().add(9, shell).bytes(), nullptr).damaged);
    }
    const Data huge = Data().u32(0x10000).u32(0x10000).point(0, 0, 0);
    EXPECT_TRUE(proxy::replay(&recorder, Graphics().add(8, huge).bytes(), nullptr).damaged);
    EXPECT_THAT(recorder.calls, SizeIs(0));
}

} // namespace
