// What a drawing asks of its program.
#include "host/db/host_services.h"

#include "host/db/database.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

TEST(Services, FilesAreFoundBesideTheDrawing) {
    const fs::path folder =
        fs::temp_directory_path() / ("qorvane-services-" + std::to_string(getpid()));
    fs::create_directories(folder / "images");
    std::ofstream(folder / "wood.png") << "x";
    std::ofstream(folder / "images" / "brick.png") << "x";
    AcDbDatabase drawing;
    drawing.setFilename((folder / "house.dxf").string());
    const AcDbHostApplicationServices& services = *acdbHostApplicationServices();
    std::string found = "before";
    EXPECT_EQ(services.findFile(found, ".\\images\\brick.png", &drawing), Acad::eOk);
    EXPECT_EQ(found, (folder / "images" / "brick.png").string());
    EXPECT_EQ(services.findFile(found, "C:\\Users\\Somebody\\wood.png", &drawing), Acad::eOk);
    EXPECT_EQ(found, (folder / "wood.png").string());
    EXPECT_EQ(services.findFile(found, (folder / "wood.png").string(), &drawing), Acad::eOk);
    found = "before";
    EXPECT_EQ(services.findFile(found, "images", &drawing), Acad::eFileNotFound) << "a folder";
    EXPECT_EQ(services.findFile(found, "brick.png", &drawing), Acad::eFileNotFound);
    EXPECT_EQ(services.findFile(found, "", &drawing), Acad::eInvalidInput);
    EXPECT_EQ(services.findFile(found, std::string("a\0b", 3), &drawing), Acad::eInvalidInput);
    EXPECT_EQ(found, "before");
    acdbSetCurDwg(&drawing);
    EXPECT_EQ(services.workingDatabase(), &drawing);
    EXPECT_EQ(services.findFile(found, "wood.png"), Acad::eOk) << "the working drawing's folder";
    acdbSetCurDwg(nullptr);
    fs::remove_all(folder);
}

TEST(Services, TheLocaleComesFromTheEnvironment) {
    const auto locale = [](const char* text) {
        setenv("LC_ALL", text, 1);
        return acdbHostApplicationServices()->userLocale();
    };
    const char* before = std::getenv("LC_ALL");
    const std::string kept = before != nullptr ? before : "";
    EXPECT_EQ(locale("de_DE.UTF-8"), "de_DE");
    EXPECT_EQ(locale("fr_CA@euro"), "fr_CA");
    EXPECT_EQ(locale("C.UTF-8"), "en_US");
    before != nullptr ? setenv("LC_ALL", kept.c_str(), 1) : unsetenv("LC_ALL");
}

TEST(Services, AModulesServicesComeAndGo) {
    AcDbHostApplicationServices* const own = acdbHostApplicationServices();
    {
        struct Mine : AcDbHostApplicationServices {
            std::string product() const override { return "Mine"; }
        } mine;
        acdbSetHostApplicationServices(&mine);
        EXPECT_EQ(acdbHostApplicationServices()->product(), "Mine");
        AcDbHostApplicationProgressMeter* meter = mine.newProgressMeter();
        meter->setLimit(2);
        meter->meterProgress();
        EXPECT_EQ(meter->position(), 1);
        meter->stop();
        EXPECT_EQ(meter->position(), 0);
    }
    EXPECT_EQ(acdbHostApplicationServices(), own) << "they end with their object";
}

} // namespace
