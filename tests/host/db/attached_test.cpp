// What hangs on an entity: extended data of all kinds, extension dictionaries with bytes, the
// mapper of its material.
#include "support.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/polylines.h"
#include "host/ed/ed.h"

#include <gmock/gmock.h>

#include <numeric>

using namespace test_dxf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string kBlock =
    "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n"
    "5\n50\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\nTREE\n70\n0\n10\n0.0\n20\n0.0\n30\n0.0\n"
    "0\nENDBLK\n5\n51\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n0\nENDSEC\n"
    "0\nSECTION\n2\nENTITIES\n";

std::string drawing(const std::string& entities) {
    return kBlock + entities + "0\nENDSEC\n0\nEOF\n";
}

const std::string kEntities =
    "0\nINSERT\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\nTREE\n10\n1.0\n20\n2.0\n"
    "30\n3.0\n"
    "0\nLINE\n5\nA2\n102\n{ACAD_REACTORS\n330\nC\n102\n}\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n"
    "10\n0.0\n20\n0.0\n30\n0.0\n11\n1.0\n21\n0.0\n31\n0.0\n1001\nOTHER\n1000\nkept\n"
    "0\nLWPOLYLINE\n5\nA3\n100\nAcDbEntity\n8\n0\n100\nAcDbPolyline\n90\n2\n70\n0\n10\n0.0\n20\n"
    "0.0\n10\n1.0\n20\n0.0\n";

/// Every byte value, more than one file line can hold.
std::vector<std::uint8_t> some_bytes(std::size_t count = 1000) {
    std::vector<std::uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

constexpr std::uint64_t kHandles[] = {0xa1, 0xa2, 0xa3};

void attach(AcDbDatabase& db, std::uint64_t handle, const std::vector<std::uint8_t>& bytes) {
    AcDbObjectPointer<AcDbEntity> entity(db.getAcDbObjectId(AcDbHandle(handle)), AcDb::kForWrite);
    ASSERT_TRUE(entity);
    ASSERT_EQ(entity->createExtensionDictionary(), Acad::eOk);
    AcDbObjectPointer<AcDbDictionary> own(entity->extensionDictionary(), AcDb::kForWrite);
    ASSERT_TRUE(own);
    auto record = std::make_unique<AcDbXrecord>();
    ASSERT_EQ(
        record->setFromRbChain({AcDbValue(90, std::int64_t(handle)), AcDbValue::binary(310, bytes),
                                AcDbValue(1, std::string("behind"))}),
        Acad::eOk);
    AcDbObjectId id;
    ASSERT_EQ(own->setAt("TsAcData", std::move(record), id), Acad::eOk);
}

void expect_attached(const AcDbDatabase& db, std::uint64_t handle,
                     const std::vector<std::uint8_t>& bytes) {
    const AcDbObjectPointer<AcDbEntity> entity(db.getAcDbObjectId(AcDbHandle(handle)));
    ASSERT_TRUE(entity) << handle;
    const AcDbObjectPointer<AcDbDictionary> own(entity->extensionDictionary());
    AcDbObjectId id;
    ASSERT_TRUE(own) << handle;
    ASSERT_EQ(own->getAt("TSACDATA", id), Acad::eOk) << handle;
    const AcDbObjectPointer<AcDbXrecord> record(id);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->rbChain().front().integer(), static_cast<std::int64_t>(handle));
    EXPECT_EQ(record->rbChain().back().text(), "behind");
    EXPECT_EQ(acdbBytes(record->rbChain(), 310), bytes);
}

class Attached : public testing::TestWithParam<AcDbDxfForm> {};

TEST_P(Attached, BytesSurviveWritingAndReading) {
    const auto bytes = some_bytes();
    const auto db = load(drawing(kEntities));
    for (const std::uint64_t handle : kHandles) {
        attach(*db, handle, bytes);
    }
    const auto again = load(save(*db, GetParam()));
    EXPECT_EQ(again->loadReport().repaired.size(), db->loadReport().repaired.size());
    EXPECT_THAT(again->loadReport().lost, IsEmpty());
    for (const std::uint64_t handle : kHandles) {
        expect_attached(*again, handle, bytes);
        attach(*again, handle, {1, 2}); // replaced, in the dictionary that is there
    }
    const auto third = load(save(*again));
    for (const std::uint64_t handle : kHandles) {
        expect_attached(*third, handle, {1, 2});
    }
    const AcDbObjectPointer<AcDbLine> line(third->getAcDbObjectId(AcDbHandle(0xa2)));
    EXPECT_THAT(line->xData("OTHER"), SizeIs(2)) << "what was there stays";
    EXPECT_EQ(line->endPoint(), (AcGePoint3d{1, 0, 0}));
}

TEST_P(Attached, ExtendedDataOfAllKinds) {
    const AcDbValues data{AcDbValue(1001, std::string("TS_TEST")),
                          AcDbValue(1000, std::string("Bäume\nzwei")),
                          AcDbValue(1002, std::string("{")),
                          AcDbValue(1003, std::string("0")),
                          AcDbValue::binary(1004, some_bytes(127)),
                          AcDbValue(1005, std::string("A1")),
                          AcDbValue(1010, AcGePoint3d{1, 2, 3}),
                          AcDbValue(1011, AcGePoint3d{4, 5, 6}),
                          AcDbValue(1012, AcGePoint3d{7, 8, 9}),
                          AcDbValue(1013, AcGePoint3d{0, 0, 1}),
                          AcDbValue(1040, 0.5),
                          AcDbValue(1041, 1.5),
                          AcDbValue(1042, 2.5),
                          AcDbValue(1070, std::int64_t{-7}),
                          AcDbValue(1071, std::int64_t{-100000}),
                          AcDbValue(1002, std::string("}"))};
    const auto db = load(drawing(kEntities));
    for (const std::uint64_t handle : kHandles) {
        AcDbObjectPointer<AcDbEntity> entity(db->getAcDbObjectId(AcDbHandle(handle)),
                                             AcDb::kForWrite);
        ASSERT_EQ(entity->setXData(data), Acad::eOk);
    }
    const auto again = load(save(*db, GetParam()));
    for (const std::uint64_t handle : kHandles) {
        const AcDbObjectPointer<AcDbEntity> entity(again->getAcDbObjectId(AcDbHandle(handle)));
        const AcDbValues read = entity->xData("ts_test");
        ASSERT_EQ(read.size(), data.size());
        for (std::size_t i = 0; i < data.size(); ++i) {
            EXPECT_EQ(read[i].code, data[i].code);
            EXPECT_TRUE(read[i].value == data[i].value) << data[i].code;
        }
        EXPECT_THAT(entity->xData("TS_OTHER"), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, Attached,
                         testing::Values(AcDbDxfForm::kAsInput, AcDbDxfForm::kBinary));

TEST(AttachedData, ValuesThatDoNotFitTheirCodeAreRefused) {
    const auto db = load(drawing(kEntities));
    AcDbObjectPointer<AcDbEntity> line(db->getAcDbObjectId(AcDbHandle(0xa2)), AcDb::kForWrite);
    const AcDbValue kWrong[] = {
        AcDbValue(1004, std::string("00")), AcDbValue(1070, 1.5),
        AcDbValue(1000, std::int64_t{1}),   AcDbValue(1071, std::string("1")),
        AcDbValue(1040, AcGePoint3d{}),     AcDbValue(1072, std::int64_t{1})};
    for (const AcDbValue& wrong : kWrong) {
        EXPECT_EQ(line->setXData({AcDbValue(1001, std::string("A")), wrong}), Acad::eInvalidInput)
            << wrong.code;
    }
    for (const AcDbValue& wrong : {AcDbValue(310, std::string("00")), AcDbValue(90, 1.5),
                                   AcDbValue(1, AcGePoint3d{}), AcDbValue(1070, std::int64_t{1})}) {
        EXPECT_EQ(AcDbXrecord().setFromRbChain({wrong}), Acad::eInvalidInput) << wrong.code;
    }
    EXPECT_THAT(line->xData("A"), IsEmpty());
}

TEST(AttachedData, OfANewEntityRegistersItsApplication) {
    AcDbDatabase db;
    auto line = std::make_unique<AcDbLine>();
    ASSERT_EQ(line->setXData({AcDbValue(1001, std::string("Neue Anwendung")),
                              AcDbValue(1070, std::int64_t{1})}),
              Acad::eOk);
    AcDbObjectId id;
    AcDbObjectPointer<AcDbBlockTableRecord>(db.modelSpaceId(), AcDb::kForWrite)
        ->appendAcDbEntity(std::move(line), id);
    const std::string written = save(db);
    EXPECT_THAT(written, HasSubstr("AcDbRegAppTableRecord\n  2\nNeue Anwendung\n"));
    EXPECT_THAT(first_entity<AcDbLine>(*load(written))->xData("Neue Anwendung"), SizeIs(2));
}

TEST(AttachedData, TheMapperOfAnEntity) {
    const auto mapped = [](const std::string& data) {
        return load(
            drawing("0\nCIRCLE\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbCircle\n40\n1.0\n" + data));
    };
    const std::string head = "1001\nOTHER\n1070\n3\n1001\nACAD_MATERIAL_MAPPER\n1070\n4\n1070\n0\n";
    const auto db = mapped(head + "1070\n0\n1011\n10.0\n1021\n20.0\n1031\n30.0\n1011\n12.0\n1021\n"
                                  "20.0\n1031\n30.0\n1011\n10.0\n1021\n21.0\n1031\n30.0\n1011\n"
                                  "10.0\n1021\n20.0\n1031\n31.0\n1001\nACAD_MATERIAL_MAPPER_2\n"
                                  "1070\n0\n1070\n0\n");
    auto& circle = *first_entity<AcDbCircle>(*db);
    ASSERT_NE(circle.mapper(), nullptr);
    EXPECT_EQ(circle.mapper()->projection, AcGiMapper::kSphere);
    const AcGePoint3d end = AcGePoint3d{1, 1, 1}.transformedBy(circle.mapper()->transform);
    EXPECT_TRUE(end.isEqualTo({12, 21, 31}));
    ASSERT_EQ(circle.setXData({AcDbValue(1001, std::string("acad_material_mapper"))}), Acad::eOk);
    EXPECT_EQ(circle.mapper(), nullptr) << "taken away";

    EXPECT_EQ(first_entity<AcDbCircle>(*mapped("1001\nOTHER\n1070\n3\n"))->mapper(), nullptr);
    const auto flat = mapped(head + "1011\n1.0\n1011\n1.0\n1011\n1.0\n1011\n1.0\n");
    EXPECT_EQ(first_entity<AcDbCircle>(*flat)->mapper()->transform, AcGeMatrix3d::kIdentity);
    const auto odd = mapped("1001\nACAD_MATERIAL_MAPPER\n1070\n77\n");
    EXPECT_EQ(first_entity<AcDbCircle>(*odd)->mapper()->projection, AcGiMapper::kInheritProjection);
}

TEST(AttachedData, ListSaysWhatAndWhere) {
    const auto db = load(drawing(kEntities));
    struct Port : AcEdInputPort {
        std::string text;
        std::optional<std::string> readLine(const std::string&) override { return std::nullopt; }
        void write(const std::string& piece) override { text += piece; }
    } port;
    AcEdInputPort* old = acedSetInputPort(&port);
    AcDbObjectPointer<AcDbLine>(db->getAcDbObjectId(AcDbHandle(0xa2)))->list();
    acedSetInputPort(old);
    const std::string& text = port.text;
    EXPECT_THAT(text, HasSubstr("LINE"));
    EXPECT_THAT(text, HasSubstr("Layer: \"0\""));
    EXPECT_THAT(text, HasSubstr("Class: AcDbLine\n"));
    EXPECT_THAT(text, HasSubstr("Handle = A2\n"));
    EXPECT_THAT(text, HasSubstr("to X = 1  Y = 0  Z = 0\n"));
}

} // namespace
