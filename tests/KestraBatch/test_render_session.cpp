// Sessions: how they begin, are steered, end and begin again; what they leave on the disk.
#include "KestraBatch/render_session.h"

#include "KestraBatch/saved_picture.h"
#include "omb/globals/globals.h"
#include "platform/files.h"
#include "platform/thread_priority.h"
#include "tests/KestraBatch/folder_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <sstream>
#include <thread>

namespace {

using namespace KestraBatch;
using batch_test::BatchFolderOnDisk;
using batch_test::with;
using renderer::ChannelFilm;

constexpr double long_enough = 60; // seconds

class RenderSessionTest : public ::testing::Test {
protected:
    void passes(int count) const {
        folder.write("option_globals.txt", with(folder.settings(), "iks_max_render_passes; 4",
                                                fmt::format("iks_max_render_passes; {}", count)));
    }
    static void wait_for_picture(const RenderSession& session) {
        for (int i = 0; i < 6000 && session.status().picture == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        ASSERT_GT(session.status().picture, 0u);
    }
    static ChannelFilm picture_of(const RenderSession& session) {
        std::uint64_t known = 0;
        ChannelFilm picture;
        EXPECT_TRUE(session.take_picture(known, picture));
        EXPECT_FALSE(session.take_picture(known, picture)) << "there is no newer one";
        return picture;
    }
    static std::string text_of(const std::filesystem::path& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    /// A picture that takes a while for each pass.
    void slow_passes() const {
        std::string slow =
            with(folder.settings(), "iks_max_render_passes; 4", "iks_max_render_passes; 2");
        slow = with(slow, "iks_resx; 64\niks_resy; 48", "iks_resx; 400\niks_resy; 300");
        folder.write("option_globals.txt", slow);
    }
    static void wait_for_rendering(const RenderSession& session) {
        for (int i = 0; i < 6000 && session.status().state < SessionState::rendering; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    BatchFolderOnDisk folder{"session"};
};

/// Share of the pixels that no light has reached.
double black_share(const ChannelFilm& picture) {
    const auto& light = picture.film.radiance;
    const auto black = std::count_if(light.begin(), light.end(), [](const renderer::Rgb& c) {
        return c.x == 0 && c.y == 0 && c.z == 0;
    });
    return static_cast<double>(black) / static_cast<double>(light.size());
}

bool same_light(const ChannelFilm& a, const ChannelFilm& b) {
    const auto same = [](const std::vector<renderer::Rgb>& x, const std::vector<renderer::Rgb>& y) {
        return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof x[0]) == 0;
    };
    bool equal = a.film.passes == b.film.passes && same(a.film.radiance, b.film.radiance) &&
                 a.channels.size() == b.channels.size();
    for (std::size_t i = 0; equal && i < a.channels.size(); ++i) {
        equal = same(a.channels[i].radiance, b.channels[i].radiance);
    }
    return equal;
}

TEST_F(RenderSessionTest, RendersByChannelAndAgainTheSame) {
    RenderSession session(folder.params(), "test", 2);
    EXPECT_TRUE(session.wait(0)) << "it has not begun";
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    const SessionStatus status = session.status();
    EXPECT_EQ(status.state, SessionState::finished) << status.problem;
    EXPECT_EQ(status.pass, 4);
    EXPECT_EQ(status.passes, 4);
    EXPECT_EQ(status.fraction, 1);
    EXPECT_EQ(session.job().settings.width, 64);
    EXPECT_EQ(session.parameters().model_name, "house");
    EXPECT_FALSE(session.changed_settings().empty());
    const ChannelFilm first = picture_of(session);
    ASSERT_EQ(first.channels.size(), 2u);
    EXPECT_EQ(first.channels[0].name, "Sun");
    EXPECT_EQ(first.channels[1].name, "Sky");

    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_GT(session.status().picture, status.picture) << "numbers of pictures go on rising";
    EXPECT_TRUE(same_light(picture_of(session), first));
}

TEST_F(RenderSessionTest, MorePassesAreWhatAllAtOnceWouldBe) {
    passes(7);
    RenderSession whole(folder.params(), "test", 1);
    whole.start();
    ASSERT_TRUE(whole.wait(long_enough));

    passes(2);
    RenderSession session(folder.params(), "test", 2);
    session.add_passes(5); // there is nothing yet to add to
    session.start();
    session.set_region({10, 20, 16, 16});
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().pass, 2);
    session.add_passes(3);
    session.add_passes(2); // under way, or ended by now
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::finished);
    EXPECT_EQ(session.status().pass, 7);
    EXPECT_TRUE(same_light(picture_of(session), picture_of(whole)));
}

TEST_F(RenderSessionTest, DraftsComeFirstAndLeaveNoTrace) {
    RenderSession plain(folder.params(), "test", 2);
    plain.start();
    ASSERT_TRUE(plain.wait(long_enough));
    RenderSession watched(folder.params(), "test", 2);
    watched.show_drafts();
    watched.start();
    ASSERT_TRUE(watched.wait(long_enough));
    EXPECT_TRUE(same_light(picture_of(watched), picture_of(plain)));
    EXPECT_EQ(watched.status().picture, plain.status().picture + 2);
}

TEST_F(RenderSessionTest, PausesAndStopsAndKeepsWhatItHas) {
    passes(500000);
    RenderSession session(folder.params(), "test", 2);
    session.start();
    wait_for_picture(session);
    session.pause();
    EXPECT_EQ(session.status().state, SessionState::paused);
    std::this_thread::sleep_for(std::chrono::milliseconds(60)); // the pixels under way
    const SessionStatus before = session.status();
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    const SessionStatus after = session.status();
    EXPECT_EQ(after.picture, before.picture);
    EXPECT_EQ(after.elapsed_seconds, before.elapsed_seconds) << "the clock stands still";
    EXPECT_FALSE(session.wait(0));

    session.resume();
    for (int i = 0; i < 2000 && session.status().picture == after.picture; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_GT(session.status().picture, after.picture);
    session.pause();
    session.stop();
    ASSERT_TRUE(session.wait(long_enough));
    const SessionStatus stopped = session.status();
    EXPECT_EQ(stopped.state, SessionState::stopped);
    const ChannelFilm kept = picture_of(session);
    EXPECT_EQ(kept.film.passes, stopped.pass);

    session.add_passes(2);
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::finished);
    EXPECT_EQ(picture_of(session).film.passes, kept.film.passes + 2);
}

TEST_F(RenderSessionTest, StoppedBeforeThereIsLightItLeavesNoPicture) {
    std::string stream; // takes some milliseconds to read
    for (int i = 0; i < 300000; ++i) {
        stream += "#;a comment\n";
    }
    folder.write("batch_file.txt", stream + batch_test::box_stream());
    RenderSession session(folder.params(), "test", 1);
    session.start();
    session.pause();
    session.stop();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::stopped);
    EXPECT_EQ(session.status().picture, 0u);
}

TEST_F(RenderSessionTest, StoppedInItsFirstPassItLeavesAWholePictureThatIsMarkedAsADraft) {
    slow_passes();
    for (const bool watched : {false, true}) {
        RenderSession session(folder.params(), "test", 1);
        if (watched) {
            session.show_drafts();
        }
        session.start();
        wait_for_rendering(session);
        if (watched) {
            wait_for_picture(session); // a draft
        }
        session.stop();
        ASSERT_TRUE(session.wait(long_enough));
        ASSERT_EQ(session.status().state, SessionState::stopped) << session.status().problem;
        ASSERT_EQ(session.status().pass, 0) << "the passes are too short for this test";
        const ChannelFilm kept = picture_of(session);
        EXPECT_EQ(kept.film.passes, 0);
        EXPECT_EQ(kept.film.width, 400);
        EXPECT_LT(black_share(kept), 0.02) << "no gaps";
        ASSERT_EQ(kept.channels.size(), 2u);
        EXPECT_EQ(kept.channels[1].radiance.size(), kept.film.radiance.size());
        EXPECT_EQ(session.status().warnings.back().code, "draft");

        std::string error;
        const auto file = folder.folder / "draft.QorImage";
        const auto& tone = session.job().tone;
        ASSERT_TRUE(session.save(file, session.job().weights, tone, error)) << error;
        const auto linear = folder.folder / "draft.exr";
        EXPECT_TRUE(session.save(linear, session.job().weights, tone, error)) << error;
        renderer::QorImage back;
        ASSERT_TRUE(open_saved_picture(file, back, error)) << error;
        EXPECT_TRUE(same_light(back.picture, kept));
        EXPECT_EQ(back.metadata.back().first, "Draft");
        if (watched) {
            session.add_passes(1); // from the start: there is no whole pass to go on from
            ASSERT_TRUE(session.wait(long_enough));
            EXPECT_EQ(session.status().state, SessionState::finished);
            EXPECT_EQ(picture_of(session).film.passes, 1);
        }
    }
}

TEST_F(RenderSessionTest, WithSomebodyWhoLooksOnTheRenderGivesWay) {
    const int before = platform::giving_way();
    int other = 0;
    std::thread([&] {
        platform::give_way();
        std::thread([&] { other = platform::giving_way(); }).join();
    }).join();
    EXPECT_GE(other, 10) << "threads that it starts do, too";
    slow_passes();
    RenderSession session(folder.params(), "test", 2);
    session.show_drafts();
    session.start();
    wait_for_picture(session);
    int giving_way = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::istringstream fields(text_of(task.path() / "stat"));
        std::string field;
        for (int i = 0; i < 19; ++i) { // the 19th is the nice value
            fields >> field;
        }
        giving_way += std::atoi(field.c_str()) >= 10 ? 1 : 0;
    }
    EXPECT_GE(giving_way, 1);
    EXPECT_EQ(platform::giving_way(), before) << "the owner's thread stays as it is";
}

TEST_F(RenderSessionTest, FailuresAreToldAndTheNextStartIsFresh) {
    RenderSession session(folder.params(), "test", 1);
    const auto away = folder.folder.string() + "_away";
    std::filesystem::rename(folder.folder, away);
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::failed);
    EXPECT_EQ(session.status().code, ExitCode::input_unreadable);
    EXPECT_EQ(session.status().problem, folder.params() + ": no such file");
    std::string error;
    EXPECT_FALSE(session.save(folder.folder / "x.png", renderer::neutral_weights(), {}, error));
    EXPECT_NE(error.find("no picture yet"), std::string::npos) << error;

    std::filesystem::rename(away, folder.folder);
    folder.write("batch_file.txt", "MESH;\n");
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::failed);
    EXPECT_NE(session.status().problem.find("batch_file.txt(1): "), std::string::npos);

    folder.write("batch_file.txt", batch_test::box_stream());
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::finished);
    EXPECT_EQ(session.status().problem, "");
}

TEST_F(RenderSessionTest, AFolderThatGoesWhileItRendersCostsNothingButTheSaving) {
    passes(500000);
    RenderSession session(folder.params(), "test", 1);
    session.start();
    wait_for_picture(session);
    std::filesystem::remove_all(folder.folder);
    session.stop();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.status().state, SessionState::stopped);
    std::string error;
    EXPECT_FALSE(session.save(folder.picture(), session.job().weights, session.job().tone, error));
    EXPECT_NE(error.find("does not exist"), std::string::npos) << error;
}

TEST_F(RenderSessionTest, ManySessionsLeaveNoThreadAndNoMemory) {
    passes(100000);
    std::uint64_t bytes = 0;
    for (int i = 0; i < 50; ++i) {
        RenderSession session(folder.params(), "test", 2);
        session.start();
        if (i % 3 == 0) {
            wait_for_picture(session);
        }
        if (i % 3 == 1) {
            session.pause();
        }
        // destroyed under way
        if (i == 9) {
            bytes = platform::resident_bytes();
        }
    }
    EXPECT_LT(platform::resident_bytes(), bytes + (std::uint64_t{24} << 20));
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    EXPECT_LT(std::distance(tasks, {}), 20);
}

TEST_F(RenderSessionTest, SavesEveryKindAndLeavesTheOldFileWhereItCannot) {
    RenderSession session(folder.params(), "test", 1);
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    std::string error;
    auto weights = renderer::neutral_weights();
    weights[0] = 0.25f;
    renderer::ToneSettings tone = session.job().tone;
    tone.brightness = 0.7;
    for (const char* name : {"a.png", "a.jpg", "a.hdr", "a.exr", "a.QorImage"}) {
        EXPECT_TRUE(session.save(folder.folder / name, weights, tone, error)) << error;
        EXPECT_GT(std::filesystem::file_size(folder.folder / name), 1000u) << name;
    }
    renderer::QorImage back;
    ASSERT_TRUE(open_saved_picture(folder.folder / "a.QorImage", back, error)) << error;
    EXPECT_TRUE(same_light(back.picture, picture_of(session)));
    EXPECT_EQ(back.weights, weights);
    EXPECT_EQ(back.tone.brightness, 0.7);
    ASSERT_GT(back.metadata.size(), 1u);
    EXPECT_EQ(back.metadata[1],
              (std::pair<std::string, std::string>("Drawing", "/nowhere/house.dxf")));

    const std::string before = text_of(folder.folder / "a.png");
    std::filesystem::create_directory(folder.folder / "b.QorImage");
    EXPECT_FALSE(session.save(folder.folder / "b.QorImage", weights, tone, error));
    EXPECT_FALSE(session.save(folder.folder / "a.gif", weights, tone, error));
    EXPECT_NE(error.find("'gif' is not one of"), std::string::npos) << error;
    EXPECT_FALSE(session.save("/nowhere/at/all/a.png", weights, tone, error));
    EXPECT_EQ(text_of(folder.folder / "a.png"), before);
    EXPECT_FALSE(open_saved_picture(folder.folder / "a.png", back, error));
    EXPECT_NE(error.find("this is no QorImage"), std::string::npos) << error;
}

TEST_F(RenderSessionTest, WeightsComeFromTheSettings) {
    folder.write("option_globals.txt",
                 folder.settings("bks_lighting_channel_on0; 0\nrks_lighting_channel_intensity1; 2\n"
                                 "sks_lighting_channel_name1; Evening\n"));
    RenderSession session(folder.params(), "test", 1);
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.job().weights[0], 0.0f);
    EXPECT_EQ(session.job().weights[1], 2.0f);
    EXPECT_EQ(picture_of(session).channels[1].name, "Evening");
}

TEST_F(RenderSessionTest, SettingsGoBackIntoTheFolder) {
    folder.write("qor_doc.xml", "<TsDoc version=\"1\"><Later keep=\"me\"/></TsDoc>\n");
    folder.write("option_globals.txt", with(folder.settings("bks_enable_fog; 1\n"),
                                            "sks_auto_image_name; out.png\n", ""));
    RenderSession session(folder.params(), "test", 1);
    session.start();
    ASSERT_TRUE(session.wait(long_enough));
    ASSERT_EQ(session.status().state, SessionState::finished) << session.status().problem;
    set_global_int("iks_tone_operator_brightness", 63);
    set_global_bool("bks_sun_on", false);
    std::string error;
    ASSERT_TRUE(hand_settings_back(session.parameters(), error)) << error;
    const std::string options = text_of(folder.folder / "option_globals.txt");
    EXPECT_NE(options.find("iks_tone_operator_brightness; 63\n"), std::string::npos);
    EXPECT_NE(options.find("iks_resx; 64\n"), std::string::npos);
    EXPECT_NE(options.find("bks_enable_fog; 1\n"), std::string::npos) << "what is not rendered too";
    EXPECT_NE(options.find("sks_auto_image_name; \n"), std::string::npos)
        << "the name that was made up is no setting";
    const std::string document = text_of(folder.folder / "qor_doc.xml");
    EXPECT_NE(document.find("<Later keep=\"me\""), std::string::npos) << document;

    session.start(); // with what was handed back
    ASSERT_TRUE(session.wait(long_enough));
    EXPECT_EQ(session.job().tone.brightness, 0.63);
    EXPECT_EQ(picture_of(session).channels.size(), 1u) << "the sun is off";

    folder.write("qor_doc.xml", "<Other/>");
    const std::string kept = text_of(folder.folder / "option_globals.txt");
    EXPECT_FALSE(hand_settings_back(session.parameters(), error));
    EXPECT_NE(error.find("not 'TsDoc'"), std::string::npos) << error;
    EXPECT_EQ(text_of(folder.folder / "option_globals.txt"), kept);
}

} // namespace
