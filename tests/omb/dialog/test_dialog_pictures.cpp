// Pictures of dialogs: Radiance and PNG files, tone mapping, the store of read ones, image boxes.
#include "omb/base/application_files.h"
#include "omb/base/png_file.h"
#include "omb/dialog/dialog_image.h"
#include "omb/dialog/hdr_picture.h"
#include "omb/dialog/html_box.h"
#include "omb/dialog/image_box.h"
#include "omb/dialog/richedit_box.h"
#include "omb/dialog/thumbnail_box.h"
#include "tests/omb/dialog/composite_fixture.h"

#include <cmath>

namespace {

using platform::WindowPicture;

std::string header(const std::string& size) {
    return "#?RADIANCE\n# made by hand\nFORMAT=32-bit_rle_rgbe\n\n" + size + "\n";
}

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) {
        text += static_cast<char>(value);
    }
    return text;
}

/// Two lines of eight pixels in the newer form: red runs, the others in stretches.
std::string newer_form() {
    std::string text = header("-Y 2 +X 8");
    for (const int red : {128, 64}) {
        text += bytes({2, 2, 0, 8, 128 + 8, red});
        text += bytes({8, 0, 16, 32, 48, 64, 80, 96, 112});
        text += bytes({128 + 4, 0, 4, 128, 128, 128, 128});
        text += bytes({128 + 8, 129}); // exponent: bytes count 1/128
    }
    return text;
}

TEST(HdrPicture, NewerRunLengths) {
    cl_hdr_picture picture;
    ASSERT_EQ(read_hdr_picture(newer_form(), picture), "");
    EXPECT_EQ(picture.width, 8);
    EXPECT_EQ(picture.height, 2);
    EXPECT_FLOAT_EQ(picture.rgb[0], 1);
    EXPECT_FLOAT_EQ(picture.rgb[3 * 7 + 1], 112 / 128.0F);
    EXPECT_FLOAT_EQ(picture.rgb[3 * 3 + 2], 0);
    EXPECT_FLOAT_EQ(picture.rgb[3 * 4 + 2], 1);
    EXPECT_FLOAT_EQ(picture.rgb[3 * 8], 0.5); // the second line

    cl_hdr_picture reduced; // halved: blocks of 2 by 2
    ASSERT_EQ(read_hdr_picture(newer_form(), reduced, 4), "");
    EXPECT_EQ(reduced.width, 4);
    EXPECT_EQ(reduced.height, 1);
    EXPECT_FLOAT_EQ(reduced.rgb[0], 0.75);
    EXPECT_FLOAT_EQ(reduced.rgb[1], 8 / 128.0F);
}

TEST(HdrPicture, OlderFormAndDirections) {
    const std::string first = bytes({128, 0, 0, 129}), second = bytes({0, 128, 0, 129});
    // Four pixels: one, and two repeats of it; runs are counted in bytes of the shift.
    cl_hdr_picture picture;
    ASSERT_EQ(read_hdr_picture(header("-Y 1 +X 4") + first + bytes({1, 1, 1, 2}) + second, picture),
              "");
    EXPECT_FLOAT_EQ(picture.rgb[6], 1);
    EXPECT_FLOAT_EQ(picture.rgb[9], 0);
    EXPECT_FLOAT_EQ(picture.rgb[10], 1);
    // From the bottom and from the right.
    ASSERT_EQ(read_hdr_picture(header("+Y 2 -X 2") + first + second + second + second, picture),
              "");
    EXPECT_FLOAT_EQ(picture.rgb[0], 0);
    EXPECT_FLOAT_EQ(picture.rgb[6], 0); // the first line of the file, its last pixel
    EXPECT_FLOAT_EQ(picture.rgb[9], 1);
    // An exponent of 0 is black whatever the bytes.
    ASSERT_EQ(read_hdr_picture(header("-Y 1 +X 1") + bytes({255, 255, 255, 0}), picture), "");
    EXPECT_FLOAT_EQ(picture.rgb[0], 0);
}

TEST(HdrPicture, DamagedOnesAreRefused) {
    cl_hdr_picture picture;
    const std::string whole = newer_form();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_NE(read_hdr_picture(whole.substr(0, size), picture), "") << size;
    }
    for (const char* size : {"-Y 0 +X 8", "-Y 2 +X 70000", "-Y 65536 +X 65536", "+X 8 -Y 2", "8 2",
                             "-Y -2 +X 8", ""}) {
        EXPECT_NE(read_hdr_picture(header(size) + std::string(64, '\1'), picture), "") << size;
    }
    const std::string pixel = bytes({9, 9, 9, 129});
    // A run over the end of the line, one ahead of any pixel, one of another width.
    EXPECT_NE(read_hdr_picture(header("-Y 1 +X 4") + pixel + bytes({1, 1, 1, 200}), picture), "");
    EXPECT_NE(read_hdr_picture(header("-Y 1 +X 4") + bytes({1, 1, 1, 4}), picture), "");
    EXPECT_NE(read_hdr_picture(header("-Y 1 +X 8") + bytes({2, 2, 0, 9}) + std::string(99, '\1'),
                               picture),
              "");
    EXPECT_NE(
        read_hdr_picture("#?RADIANCE\nFORMAT=32-bit_rle_xyze\n\n-Y 1 +X 1\n" + pixel, picture), "");
    // A run of nothing, again and again, ends as well.
    std::string nothing = header("-Y 1 +X 4") + pixel;
    for (int i = 0; i < 100; ++i) {
        nothing += bytes({1, 1, 1, 0});
    }
    EXPECT_NE(read_hdr_picture(nothing, picture), "");
}

TEST(HdrPicture, ToneMapping) {
    // One light everywhere is middle grey: 0.18 is 0.4614 in sRGB.
    for (const float light : {1e-6F, 1.0F, 1e6F}) {
        const WindowPicture shown = tone_mapped({2, 1, {light, light, light, light, light, light}});
        EXPECT_EQ(shown.rgba, (std::vector<std::uint8_t>{118, 118, 118, 255, 118, 118, 118, 255}));
    }
    // Brighter stays brighter, black stays black, a sun costs the rest nothing.
    cl_hdr_picture sky{1000, 1, std::vector<float>(3000, 0.5F)};
    sky.rgb[0] = sky.rgb[1] = sky.rgb[2] = 1e5F;
    sky.rgb[3] = sky.rgb[4] = sky.rgb[5] = 0;
    sky.rgb[6] = sky.rgb[7] = sky.rgb[8] = 1;
    const WindowPicture shown = tone_mapped(sky);
    EXPECT_EQ(shown.rgba[0], 255);
    EXPECT_EQ(shown.rgba[4], 0);
    EXPECT_GT(shown.rgba[8], shown.rgba[12]);
    EXPECT_NEAR(shown.rgba[12], 118, 2);
    EXPECT_EQ(tone_mapped({1, 1, {0, 0, 0}}).rgba[0], 0);
}

class DialogPictures : public CompositeTest {
protected:
    void SetUp() override {
        CompositeTest::SetUp();
        forget_dialog_pictures();
        std::filesystem::create_directories(folder / "appl/test/images");
        std::filesystem::create_directories(folder / "appl/comm/images");
        set_support_folder(folder.string());
    }
    void TearDown() override {
        set_support_folder("");
        set_dialog_picture_reader({});
        CompositeTest::TearDown();
    }
    std::string png(const std::string& name, int width, int height, std::uint8_t red = 200) const {
        std::vector<std::uint8_t> rgba;
        for (int i = 0; i < width * height; ++i) {
            rgba.insert(rgba.end(), {red, 20, 30, static_cast<std::uint8_t>(i % 2 == 0 ? 255 : 0)});
        }
        std::string error;
        EXPECT_TRUE(write_png_file(path(name), width, height, rgba, error)) << error;
        return path(name);
    }
    cl_image_box& box(const std::function<void(cl_image_box&)>& prepare, int kind = kind_image_box,
                      const platform::WindowRect& rect = {0, 0, 102, 52}) {
        return add<cl_image_box>(kind, "image", prepare, rect);
    }
};

TEST_F(DialogPictures, StoreFollowsTheFile) {
    const std::string file = png("one.png", 4, 2);
    const auto hour_ago = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(file, hour_ago);
    const cl_dialog_picture first = load_dialog_picture(file);
    ASSERT_TRUE(first.picture) << first.error;
    EXPECT_EQ(first.picture->rgba[0], 200);
    EXPECT_EQ(load_dialog_picture(file).picture, first.picture); // not read again
    png("one.png", 6, 2);
    EXPECT_EQ(load_dialog_picture(file).picture->width, 6);
    png("one.png", 7, 2); // within one step of the clock
    EXPECT_EQ(load_dialog_picture(file).picture->width, 7);
    put("cut.png", get("one.png").substr(0, 60));
    put("empty.png", "");
    put("cut.hdr", newer_form().substr(0, 80));
    for (const char* name : {"cut.png", "empty.png", "cut.hdr", "missing.png", "appl"}) {
        const cl_dialog_picture none = load_dialog_picture(path(name));
        EXPECT_FALSE(none.picture) << name;
        EXPECT_NE(none.error, "") << name;
    }
    put("good.hdr", newer_form());
    EXPECT_TRUE(load_dialog_picture(path("good.hdr")).picture);
}

TEST_F(DialogPictures, OtherKindsAreReadByALentReader) {
    put("a.xyz", "XYZ");
    EXPECT_FALSE(load_dialog_picture(path("a.xyz")).picture);
    set_dialog_picture_reader([](const std::string&, WindowPicture& picture, std::string&) {
        picture = {1, 1, {1, 2, 3, 4}};
        return true;
    });
    EXPECT_TRUE(load_dialog_picture(path("a.xyz")).picture); // the failure was forgotten
    set_dialog_picture_reader([](const std::string&, WindowPicture&, std::string&) -> bool {
        throw std::runtime_error("no codec");
    });
    EXPECT_EQ(load_dialog_picture(path("a.xyz")).error, "no codec");
    set_dialog_picture_reader([](const std::string&, WindowPicture& picture, std::string&) {
        picture = {100, 100, {1, 2, 3, 4}}; // says more than it has
        return true;
    });
    EXPECT_FALSE(load_dialog_picture(path("a.xyz")).picture);
}

TEST_F(DialogPictures, Reduced) {
    const auto picture = std::make_shared<const WindowPicture>(
        WindowPicture{4, 1, {10, 0, 0, 255, 30, 0, 0, 255, 100, 0, 0, 0, 60, 0, 0, 100}});
    const platform::SharedPicture half = reduced_picture(picture, {2, 2});
    EXPECT_EQ(half->width, 2);
    EXPECT_EQ(half->height, 1);
    EXPECT_EQ(half->rgba, (std::vector<std::uint8_t>{20, 0, 0, 255, 60, 0, 0, 50}));
    EXPECT_EQ(reduced_picture(picture, {4, 4}), picture);
    EXPECT_EQ(reduced_picture(nullptr, {4, 4}), nullptr);
}

TEST_F(DialogPictures, Names) {
    const std::string own = png("appl/test/images/a.png", 1, 1),
                      common = png("appl/comm/images/b.png", 1, 1);
    EXPECT_EQ(find_dialog_picture("a.png", "test"), own);
    EXPECT_EQ(find_dialog_picture("b.png", "test"), common);
    EXPECT_EQ(find_dialog_picture("test:a.png", "other"), own);
    EXPECT_EQ(find_dialog_picture(own, ""), own);
    EXPECT_EQ(find_dialog_picture("a.png", "other"), "");
    EXPECT_EQ(find_dialog_picture("../images/a.png", "test"), "");
    EXPECT_EQ(find_dialog_picture("", "test"), "");
    EXPECT_EQ(find_dialog_picture(path("appl"), "test"), "");
}

TEST_F(DialogPictures, BoxKeepsTheShape) {
    png("appl/test/images/wide.png", 40, 10);
    cl_image_box& item = box([](cl_image_box& one) { one.image_name = "wide.png"; });
    ASSERT_TRUE(item.picture());
    // 100 by 50 within the frame, the picture 4 to 1.
    EXPECT_EQ(item.picture_rect({102, 52}), (platform::WindowRect{1, 13, 100, 25}));
    item.image_pixels_x = 20;
    item.image_pixels_y = 20;
    EXPECT_EQ(item.picture_rect({102, 52}), (platform::WindowRect{41, 23, 20, 5}));
    item.distort = 1;
    EXPECT_EQ(item.picture_rect({102, 52}), (platform::WindowRect{41, 16, 20, 20}));
    item.image_pixels_x = 0;
    EXPECT_EQ(item.picture_rect({102, 52}), (platform::WindowRect{1, 1, 100, 50}));
    EXPECT_GE(item.picture_rect({0, 0}).width, 1);
}

TEST_F(DialogPictures, ButtonsWearTheirLabels) {
    png("appl/test/images/square.png", 10, 10);
    cl_image_box& item = box(
        [](cl_image_box& one) {
            one.image_name = "square.png";
            one.label = "Sun";
        },
        kind_icon_button);
    EXPECT_EQ(item.picture_rect({40, 60}), (platform::WindowRect{2, 4, 36, 36}));  // label beneath
    EXPECT_EQ(item.picture_rect({100, 20}), (platform::WindowRect{2, 2, 16, 16})); // and beside
    system.clear_log();
    item.control->repaint();
    EXPECT_NE(system.log().back().find("\"Sun\""), std::string::npos);
    EXPECT_NE(system.log().back().find("picture "), std::string::npos);
}

TEST_F(DialogPictures, BoxShowsWhatItsGlobalNames) {
    png("appl/test/images/a.png", 2, 1, 10);
    png("appl/test/images/b.png", 3, 1, 90);
    set_global_string("stest", "a.png");
    cl_image_box& item = box([](cl_image_box& one) {
        one.global_variable = "stest";
        one.show_alpha = 1;
        one.reverse_image = 1;
    });
    dialog->update_dialog();
    ASSERT_TRUE(item.picture());
    // Mirrored: the clear pixel is on the left now, and shows the chequer's white.
    EXPECT_EQ(item.picture()->rgba,
              (std::vector<std::uint8_t>{255, 255, 255, 255, 10, 20, 30, 255}));
    set_global_string("stest", "b.png");
    dialog->update_dialog();
    EXPECT_EQ(item.picture()->width, 3);
    set_global_string("stest", "none.png");
    dialog->update_dialog();
    EXPECT_FALSE(item.picture());
    EXPECT_EQ(item.image(), "none.png");
    EXPECT_EQ(traced(1, "Image not found: none.png"), 1);
    system.clear_log();
    item.control->repaint();
    EXPECT_NE(system.log().back().find("text 2,0 98x52 \"none.png\""), std::string::npos);
    put("appl/test/images/bad.png", "\x89PNG but no more");
    item.set_image(*dialog, "bad.png");
    EXPECT_EQ(traced(1, "Could not load image: " + path("appl/test/images/bad.png")), 1);
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest"), "none.png"); // nothing flows back
}

TEST_F(DialogPictures, BoxWithoutAnythingToShow) {
    box([](cl_image_box&) {});
    EXPECT_EQ(traced(1, "No image name: test_dialog image"), 1);
}

TEST_F(DialogPictures, BoxTakesEvents) {
    cl_image_box& item = box(
        [](cl_image_box& one) {
            one.label = "Go";
            one.command = mark("click");
            one.double_click_command = mark("double");
            one.right_click_command = mark("right");
            one.mouse_move_command = mark("move");
            one.arrow_command = mark("arrow");
        },
        kind_image_button);
    for (const char* action : {"click", "double_click", "right_click", "hover 5 7", "key UP"}) {
        EXPECT_TRUE(system.play(std::string("image ") + action)) << action;
    }
    EXPECT_EQ(marks, (std::vector<std::string>{"click", "double", "right", "move", "arrow"}));
    EXPECT_EQ(item.last_at, (platform::WindowPoint{5, 7}));
    EXPECT_EQ(item.last_arrow, 1);
    EXPECT_EQ(item.control->text(), "Go");
}

TEST_F(DialogPictures, ThumbnailsAreReadInTheBackground) {
    png("appl/test/images/big.png", 300, 150);
    auto& view = add<cl_thumbnail_box>(kind_thumbnail_box, "view",
                                       [](cl_thumbnail_box& item) {
                                           item.thumbnail_width = 30;
                                           item.thumbnail_height = 30;
                                           item.global_variable = "stest";
                                           item.command = mark("chosen");
                                           item.double_click_command = mark("opened");
                                       },
                                       {0, 0, 200, 200});
    view.add_item("one", "big.png");
    view.add_item("two", "gone.png", 77);
    view.add_item("three", platform::SharedPicture());
    view.refresh();
    EXPECT_TRUE(view.is_reading());
    EXPECT_EQ(traced(1, "Image not found: gone.png"), 0); // not yet
    for (int round = 0; round < 5 && view.is_reading(); ++round) {
        system.fire_timers();
    }
    EXPECT_FALSE(view.is_reading());
    EXPECT_EQ(traced(1, "Image not found: gone.png"), 1);
    EXPECT_TRUE(system.play("view select 1"));
    EXPECT_EQ(view.get_item_int(), 77);
    EXPECT_TRUE(system.play("view double_click 2"));
    EXPECT_EQ(marks, (std::vector<std::string>{"chosen", "opened"}));
    dialog->do_getvals(DO_DIALOG_ONLY);
    EXPECT_EQ(get_global_string("stest"), "three");
    set_global_string("stest", "one");
    dialog->update_dialog();
    EXPECT_EQ(view.selected_item(), 0);
    // The dialog goes in the middle of the work.
    view.add_item("four", "big.png");
    view.refresh();
    EXPECT_TRUE(view.is_reading());
    dialog_table().remove(*dialog);
    system.process_events();
    system.fire_timers();
}

TEST_F(DialogPictures, TextAndPages) {
    set_global_string("stest", "a\nb");
    add<cl_richedit_box>(kind_richedit_box, "notes", [](cl_richedit_box& item) {
        item.global_variable = "stest";
        item.edit_command = mark("edit");
    });
    set_global_string("spage", "https://example.org/?a=1&b=2");
    auto& page = add<cl_html_box>(kind_html_box, "page",
                                  [](cl_html_box& item) { item.global_variable = "spage"; });
    dialog->update_dialog();
    EXPECT_EQ(dialog->find_control("notes")->control->text(), "a\nb");
    EXPECT_EQ(page.control->text(), "<p><a href=\"https://example.org/?a=1&amp;b=2\">"
                                    "https://example.org/?a=1&amp;b=2</a></p>");
    EXPECT_TRUE(system.play("notes type c"));
    EXPECT_EQ(marks, std::vector<std::string>{"edit"});
    EXPECT_EQ(get_global_string("stest"), "c");
    put("page.html", "<h1>Hello</h1>");
    page.set_page(*dialog, path("page.html"));
    EXPECT_EQ(page.control->text(), "<h1>Hello</h1>");
    page.set_page(*dialog, "<b>bold</b>");
    EXPECT_EQ(page.control->text(), "<b>bold</b>");
    page.set_page(*dialog, path("no<where>.html"));
    EXPECT_EQ(page.control->text().find("<where>"), std::string::npos);
}

} // namespace
