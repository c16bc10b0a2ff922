// The built module, loaded as the host loads it.
#include "stream_checker.h"

#include "host/db/faces.h"
#include "host/db/symbol_tables.h"
#include "host/ed/document.h"
#include "host/ed/ed.h"
#include "host/rx/module.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

class Printed : public AcEdInputPort {
public:
    std::optional<std::string> readLine(const std::string&) override { return std::nullopt; }
    void write(const std::string& words) override { text += words; }
    std::string text;
};

TEST(Module, LoadsExtractsAndUnloadsTwice) {
    namespace fs = std::filesystem;
    const fs::path home = fs::temp_directory_path() / ("qorvane-arx-" + std::to_string(getpid()));
    setenv("QORVANE_HOME", home.c_str(), 1);
    setenv("QORVANE_BATCH_FOLDER", (home / "batch").c_str(), 1);
    Printed port;
    acedSetInputPort(&port);
    auto database = std::make_unique<AcDbDatabase>();
    {
        AcDbObjectPointer<AcDbBlockTableRecord> model(database->modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        model->appendAcDbEntity(std::make_unique<AcDbFace>(AcGePoint3d{}, AcGePoint3d{1, 0, 0},
                                                           AcGePoint3d{1, 1, 0},
                                                           AcGePoint3d{0, 1, 0}),
                                id);
    }
    acDocManager()->addDocument(std::move(database));
    for (int round = 0; round < 2; ++round) {
        std::string error;
        ASSERT_TRUE(
            acrxLoadModule(fs::path(QORVANE_BUILD_DIR) / "omb_bin" / "omb_qorvane.arx", error))
            << error;
        EXPECT_NE(port.text.find("\nOMB_Qorvane App Loaded."), std::string::npos);
        const auto extract = reinterpret_cast<int (*)()>(
            acrxGetModuleSymbol("omb_qorvane.arx", "omb_extract_batch_folder"));
        ASSERT_NE(extract, nullptr);
        EXPECT_EQ(extract(), 1) << port.text;
        EXPECT_NE(acrxFindClass("CTsAcGiGeometry"), nullptr);
        std::map<std::string, std::string> values;
        const std::string params =
            checker::read_text((home / "batch" / "qor_render_params.txt").string());
        EXPECT_EQ(checker::check_params(params, values), std::vector<std::string>());
        // The module lies in omb_bin: the support folder stands beside it.
        EXPECT_EQ(values["APPLICATION_FOLDER"], std::string(QORVANE_BUILD_DIR) + "/OMB_SUPPORT");
        EXPECT_TRUE(acrxUnloadModule("omb_qorvane.arx"));
        EXPECT_EQ(acedRegCmds().lookup("RENDER"), nullptr);
    }
    acDocManager()->closeAll();
    acedSetInputPort(nullptr);
    fs::remove_all(home);
}

} // namespace
