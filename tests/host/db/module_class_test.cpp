// Classes that a module brings: its entities are made by the reader while it is loaded, and kept as
// unknown ones while it is not.
#include "support.h"

#include "host/db/unknown.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/tag_writer.h"

#include <gmock/gmock.h>

using namespace test_dxf;

namespace {

/// As a module's light object would be: it knows one of its tags.
class LampObject : public AcDbEntity {
public:
    static AcRxClass* desc();
    AcRxClass* isA() const override { return desc(); }
    double watts = 0;

    void dxfIn(const dxf::ObjectTags& tags) override {
        AcDbEntity::dxfIn(tags);
        if (const dxf::Tag* tag = tags.find(40); tag != nullptr) {
            watts = tags.real(*tag);
        }
    }
    void dxfOut(dxf::TagWriter& writer) const override {
        AcDbEntity::dxfOut(writer);
        writer.subclass("LampObject");
        writer.real(40, watts);
    }
};

AcRxClass* LampObject::desc() {
    // Not kept in a static: a module registers its classes each time it is loaded.
    return acrxRegisterClass("LampObject", AcDbEntity::desc(), "HOSTTESTLAMP",
                             []() -> AcRxObject* { return new LampObject; });
}

const std::string kLamp =
    "0\nHOSTTESTLAMP\n5\nA1\n100\nAcDbEntity\n8\nLamps\n62\n3\n100\nLampObject\n"
    "40\n60.0\n1\nunknown to the class\n";

TEST(ModuleClasses, AreMadeWhileTheyAreRegistered) {
    const std::string source = with_entities(kLamp);
    {
        const auto before = load(source);
        const auto* unknown = first_entity<AcDbUnknownEntity>(*before);
        ASSERT_NE(unknown, nullptr);
        EXPECT_EQ(unknown->dxfName(), "HOSTTESTLAMP");
        EXPECT_EQ(unknown->layer(), "Lamps");
        EXPECT_STREQ(unknown->notRenderedReason(), "unknown-kind");
    }
    LampObject::desc();
    {
        const auto db = load(source);
        auto* made = dynamic_cast<LampObject*>(first_entity<AcDbEntity>(*db));
        ASSERT_NE(made, nullptr);
        EXPECT_TRUE(made->isKindOf(AcDbEntity::desc()));
        EXPECT_EQ(made->watts, 60);
        EXPECT_EQ(made->layer(), "Lamps");
        EXPECT_EQ(save(*db), source);
        made->assertWriteEnabled();
        made->watts = 75;
        std::string wanted = source;
        wanted.replace(wanted.find("60.0"), 4, "75.0");
        EXPECT_EQ(save(*db), wanted) << "its other tags stay";
    }
    EXPECT_TRUE(acrxDeleteClass("LampObject"));
    const auto after = load(source);
    EXPECT_NE(first_entity<AcDbUnknownEntity>(*after), nullptr);
    EXPECT_EQ(save(*after), source);
}

TEST(ModuleClasses, ProxiesAreKept) {
    const std::string source = with_entities(
        "0\nACAD_PROXY_"
        "ENTITY\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbProxyEntity\n90\n498\n91\n500\n"
        "310\n00FF\n");
    const auto db = load(source);
    const auto* proxy = first_entity<AcDbUnknownEntity>(*db);
    ASSERT_NE(proxy, nullptr);
    EXPECT_STREQ(proxy->notRenderedReason(), "proxy");
    EXPECT_EQ(save(*db), source);
}

/// A name under which a module registered no entity makes none.
TEST(ModuleClasses, OfAnotherKindMakeNoEntities) {
    acrxRegisterClass("HostTestThing", AcRxObject::desc(), "HOSTTESTTHING",
                      []() -> AcRxObject* { return new AcRxObject; });
    acrxRegisterClass("HostTestAbstract", AcDbEntity::desc(), "HOSTTESTABSTRACT", nullptr);
    for (const char* name : {"HOSTTESTTHING", "HOSTTESTABSTRACT", "DICTIONARY"}) {
        const auto db = load(with_entities(std::string("0\n") + name + "\n5\nA1\n8\n0\n"));
        EXPECT_NE(first_entity<AcDbUnknownEntity>(*db), nullptr) << name;
    }
    EXPECT_TRUE(acrxDeleteClass("HostTestThing"));
    EXPECT_TRUE(acrxDeleteClass("HostTestAbstract"));
}

} // namespace
