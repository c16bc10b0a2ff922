#include "extraction_fixture.h"

#include "omb/base/message_box.h"
#include "omb/base/profile.h"
#include "omb/base/registry.h"
#include "omb/globals/globals.h"

#include <cstdlib>
#include <fstream>
#include <unistd.h>

std::optional<std::string> ScriptedPort::readLine(const std::string& prompt) {
    written += prompt;
    if (answers.empty()) {
        return std::nullopt;
    }
    std::string answer = answers.front();
    answers.pop_front();
    return answer;
}

void ExtractionTest::SetUp() {
    home = std::filesystem::temp_directory_path() / ("qorvane-addon-" + std::to_string(getpid()));
    std::filesystem::remove_all(home);
    std::filesystem::create_directories(home);
    setenv("QORVANE_HOME", home.c_str(), 1);
    folder = home / "batch";
    setenv("QORVANE_BATCH_FOLDER", folder.c_str(), 1);
    set_profile(nullptr);
    clear_registry();
    acedSetInputPort(&port);
    start_omb_qorvane((home / "omb_bin").string());
    auto database = std::make_unique<AcDbDatabase>();
    database->setFilename("/drawings/house.dxf");
    acDocManager()->addDocument(std::move(database));
}

void ExtractionTest::TearDown() {
    stop_omb_qorvane();
    acDocManager()->closeAll();
    acedSetInputPort(nullptr);
    set_window_port(nullptr);
    unsetenv("QORVANE_BATCH_FOLDER");
    std::filesystem::remove_all(home);
}

AcDbObjectId ExtractionTest::layer(const std::string& name, int color_index) {
    auto record = std::make_unique<AcDbLayerTableRecord>();
    record->setName(name);
    record->setColor(AcCmEntityColor::index(color_index));
    AcDbObjectId id;
    EXPECT_EQ(db().layerTable().add(std::move(record), id), Acad::eOk);
    return id;
}

AcDbLayerTableRecord& ExtractionTest::layer_record(AcDbObjectId id) {
    return *AcDbObjectPointer<AcDbLayerTableRecord>(id, AcDb::kForWrite).object();
}

AcDbObjectId ExtractionTest::block(const std::string& name) {
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName(name);
    AcDbObjectId id;
    EXPECT_EQ(db().blockTable().add(std::move(record), id), Acad::eOk);
    return id;
}

AcDbObjectId ExtractionTest::material(const std::string& name, std::uint32_t rgb) {
    auto material = std::make_unique<AcDbMaterial>();
    material->setName(name);
    material->setDiffuseColor(rgb);
    AcDbObjectId id;
    AcDbObjectPointer<AcDbDictionary> materials(db().materialDictionaryId(), AcDb::kForWrite);
    EXPECT_EQ(materials->setAt(name, std::move(material), id), Acad::eOk);
    return id;
}

AcDbBlockReference& ExtractionTest::insert(AcDbObjectId block, AcDbObjectId owner,
                                           const AcGePoint3d& position) {
    auto reference = std::make_unique<AcDbBlockReference>();
    reference->setBlockTableRecord(block);
    reference->setPosition(position);
    return add(std::move(reference), owner);
}

AcDbFace& ExtractionTest::square(AcDbObjectId owner) {
    return make<AcDbFace>(owner, AcGePoint3d{0, 0, 0}, AcGePoint3d{1, 0, 0}, AcGePoint3d{1, 1, 0},
                          AcGePoint3d{0, 1, 0});
}

checker::stream ExtractionTest::extract() {
    first_use();
    result = plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY);
    EXPECT_EQ(result, 1) << theApp().omb_export.last_error << port.written;
    checker::stream stream = checker::check_stream(file("batch_file.txt"));
    EXPECT_THAT(stream.faults, testing::IsEmpty()) << body();
    return stream;
}

std::string ExtractionTest::file(const std::string& name) const {
    return checker::read_text((folder / name).string());
}

std::string ExtractionTest::body() const {
    std::string text = file("batch_file.txt");
    const std::size_t last_material = text.rfind("\nMATI;");
    const std::size_t begin =
        text.find('\n', last_material == text.npos ? text.find("DFEC;") : last_material + 1) + 1;
    return text.substr(begin, text.rfind("END;") - begin);
}
