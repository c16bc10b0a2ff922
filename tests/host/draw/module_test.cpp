// Loading of modules that behave and of modules that do not.
#include "tests/host/draw/drawing.h"

#include "host/ed/ed.h"
#include "host/rx/module.h"

#include <fstream>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct MessagePort : AcEdInputPort {
    std::string output;
    std::optional<std::string> readLine(const std::string&) override { return std::nullopt; }
    void write(const std::string& text) override { output += text; }
};

struct Modules : testing::Test {
    MessagePort port;
    std::string error;
    Modules() { acedSetInputPort(&port); }
    ~Modules() override {
        acrxUnloadAllModules();
        acedReset();
    }
    static std::filesystem::path file(const std::string& kind) {
        return std::filesystem::path(HOST_TEST_MODULES) / ("host_module_" + kind + ".arx");
    }
    bool load(const std::string& kind) { return acrxLoadModule(file(kind), error); }
};

TEST_F(Modules, GetTheirMessagesInOrder) {
    ASSERT_TRUE(load("good")) << error;
    EXPECT_TRUE(load("good")) << "a second time nothing happens";
    std::filesystem::path without_ending = file("second");
    ASSERT_TRUE(acrxLoadModule(without_ending.replace_extension(), error)) << error;
    EXPECT_THAT(acrxLoadedApps(), ElementsAre("host_module_good.arx", "host_module_second.arx"));
    using Answer = int (*)();
    auto* const answer =
        reinterpret_cast<Answer>(acrxGetModuleSymbol("Host_Module_GOOD.arx", "moduleAnswer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(acrxGetModuleSymbol("host_module_good.arx", "missing"), nullptr);
    EXPECT_EQ(acrxGetModuleSymbol("other.arx", "moduleAnswer"), nullptr);
    acrxUnloadAllModules();
    EXPECT_EQ(port.output, "good1 good3 second1 second3 second4 second2 good4 good2 ");
    EXPECT_THAT(acrxLoadedApps(), IsEmpty());
    EXPECT_FALSE(acrxUnloadModule("host_module_good.arx"));
}

TEST_F(Modules, SayWhyTheyWereNotLoaded) {
    EXPECT_FALSE(load("refusing"));
    EXPECT_THAT(error, HasSubstr("refused message 1"));
    EXPECT_FALSE(load("throwing"));
    EXPECT_THAT(error, HasSubstr("no licence"));
    EXPECT_FALSE(load("old"));
    EXPECT_THAT(error, HasSubstr("interface version 19, this program has 20"));
    EXPECT_FALSE(load("bare"));
    EXPECT_THAT(error, HasSubstr("acrxEntryPoint is missing"));
    EXPECT_FALSE(load("nowhere"));
    EXPECT_THAT(error, HasSubstr("no such module"));
    EXPECT_FALSE(acrxLoadModule(HOST_TEST_MODULES, error)) << "a folder";
    const auto text = std::filesystem::path(HOST_TEST_MODULES) / "text.arx";
    std::ofstream(text) << "not a library";
    EXPECT_FALSE(acrxLoadModule(text, error));
    EXPECT_THAT(error, HasSubstr("text.arx"));
    EXPECT_THAT(acrxLoadedApps(), IsEmpty());
    EXPECT_EQ(port.output, "refusing1 throwing1 ") << "no message after a refusal";
}

} // namespace
