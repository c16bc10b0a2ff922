// Groups: their members and names, and which group an entity is in.
#include "support.h"

#include "host/db/curves.h"
#include "host/db/group.h"

#include <gmock/gmock.h>

using namespace test_dxf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string group(const std::string& handle, const std::string& members) {
    return "0\nGROUP\n5\n" + handle + "\n330\nD\n100\nAcDbGroup\n300\nabout " + handle +
           "\n70\n0\n71\n1\n" + members;
}

/// Points A1 to A4 and three groups; the dictionary names G2 before G1, and one that is not there.
std::string drawing(const std::string& groups) {
    std::string points;
    for (const char* handle : {"A1", "A2", "A3", "A4"}) {
        points +=
            std::string("0\nPOINT\n5\n") + handle + "\n100\nAcDbEntity\n8\n0\n100\nAcDbPoint\n";
    }
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" +
           points +
           "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary\n"
           "3\nACAD_GROUP\n350\nD\n0\nDICTIONARY\n5\nD\n330\nC\n100\nAcDbDictionary\n"
           "3\nBeta\n350\nB2\n3\nGone\n350\nFF\n3\nAlpha\n350\nB1\n3\nGamma\n350\nB3\n" +
           groups + "0\nENDSEC\n0\nEOF\n";
}

const std::string kGroups = group("B1", "340\nA1\n340\nA2\n") + group("B2", "340\nA2\n340\nA3\n") +
                            group("B3", "340\nB3\n340\nEE\n340\n0\n340\nB1\n");

AcDbObjectId id_of(const AcDbDatabase& db, std::uint64_t handle) {
    return db.getAcDbObjectId(AcDbHandle(handle));
}

TEST(Groups, EntitiesAreFoundByTheFirstGroupInDictionaryOrder) {
    const auto db = load(drawing(kGroups));
    EXPECT_EQ(findings(*db), "");
    EXPECT_THAT(db->groups(), ElementsAre(id_of(*db, 0xb2), id_of(*db, 0xb1), id_of(*db, 0xb3)));
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa1)), 1);
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa2)), 0) << "in two groups";
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa3)), 0);
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa4)), -1);
    EXPECT_EQ(db->groupOf(id_of(*db, 0xb3)), -1) << "a group that names itself";
    EXPECT_EQ(db->groupOf({}), -1);
    const AcDbObjectPointer<AcDbGroup> alpha(id_of(*db, 0xb1));
    ASSERT_TRUE(alpha);
    EXPECT_EQ(alpha->name(), "Alpha");
    EXPECT_EQ(alpha->description(), "about B1");
    EXPECT_TRUE(alpha->isSelectable());
    EXPECT_FALSE(alpha->isAnonymous());
    EXPECT_THAT(alpha->members(), ElementsAre(id_of(*db, 0xa1), id_of(*db, 0xa2)));
}

TEST(Groups, ChangesAreSeen) {
    const auto db = load(drawing(kGroups));
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa4)), -1);
    {
        AcDbObjectPointer<AcDbGroup> alpha(id_of(*db, 0xb1), AcDb::kForWrite);
        alpha->append(id_of(*db, 0xa4));
        alpha->append(id_of(*db, 0xa4));
        EXPECT_EQ(db->groupOf(id_of(*db, 0xa4)), 1) << "while the group is open";
        EXPECT_EQ(alpha->remove(id_of(*db, 0xa1)), Acad::eOk);
        EXPECT_EQ(alpha->remove(id_of(*db, 0xa1)), Acad::eKeyNotFound);
    }
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa1)), -1);
    AcDbObjectPointer<AcDbGroup>(id_of(*db, 0xb2), AcDb::kForWrite)->erase();
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa4)), 0);
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa3)), -1);
    const auto again = load(save(*db));
    EXPECT_EQ(again->groupOf(id_of(*again, 0xa4)), 0);
    EXPECT_EQ(again->groupOf(id_of(*again, 0xa1)), -1);
    const AcDbObjectPointer<AcDbGroup> alpha(id_of(*again, 0xb1));
    EXPECT_THAT(alpha->members(), ElementsAre(id_of(*again, 0xa2), id_of(*again, 0xa4)));
}

TEST(Groups, OfADrawingWithoutTheirDictionary) {
    const auto db = load(with_entities("0\nPOINT\n5\nA1\n8\n0\n"));
    EXPECT_THAT(db->groups(), IsEmpty());
    EXPECT_EQ(db->groupOf(id_of(*db, 0xa1)), -1);
    // Their dictionary's name stands for something else.
    const std::string odd = "0\nGROUP\n5\nD\n330\nC\n100\nAcDbGroup\n340\nA1\n";
    std::string bytes = drawing("");
    const std::size_t at = bytes.find("0\nDICTIONARY\n5\nD\n");
    bytes.replace(at, bytes.find("0\nENDSEC", at) - at, odd);
    const auto wrong = load(bytes);
    EXPECT_EQ(wrong->groupOf(id_of(*wrong, 0xa1)), -1);
}

} // namespace
