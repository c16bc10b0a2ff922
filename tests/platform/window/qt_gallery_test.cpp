// Pictures of a window with all kinds of controls, in both themes and at two scales. With
// QORVANE_WINDOW_GALLERY=FOLDER they are written there to be looked at.
#include "tests/platform/window/qt_every_kind.h"
#include "tests/platform/window/qt_fixture.h"

#include <QImage>

#include <set>

using namespace qt_test;

namespace {

QImage image_of(const WindowPicture& picture) {
    return QImage(picture.rgba.data(), picture.width, picture.height, picture.width * 4,
                  QImage::Format_RGBA8888)
        .copy();
}

double mean_gray(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += qGray(image.pixel(x, y));
        }
    }
    return sum / (image.width() * image.height());
}

std::set<QRgb> colors_in(const QImage& image, const WindowRect& rect, int scale) {
    std::set<QRgb> colors;
    for (int y = rect.y * scale; y < (rect.y + rect.height) * scale; ++y) {
        for (int x = rect.x * scale; x < (rect.x + rect.width) * scale; ++x) {
            colors.insert(image.pixel(x, y));
        }
    }
    return colors;
}

TEST_F(QtWindows, EveryKindIsSeenInBothThemesAtBothScales) {
    const char* folder = std::getenv("QORVANE_WINDOW_GALLERY");
    std::map<std::string, QImage> images;
    for (const auto& [name, theme] :
         {std::pair("light", WindowTheme::light), std::pair("dark", WindowTheme::dark)}) {
        system.set_theme(theme);
        EveryKind all(system);
        all.window->show();
        all.controls.at("edit")->set_focus();
        system.process_events();
        for (const int scale : {1, 2}) {
            const WindowPicture picture = all.window->grab(scale);
            ASSERT_EQ(picture.width, all.window->client_size().width * scale);
            ASSERT_EQ(picture.height, all.window->client_size().height * scale);
            const QImage image = image_of(picture);
            images[name + std::to_string(scale)] = image;
            if (folder != nullptr) {
                image.save(QString("%1/%2_%3x.png").arg(folder).arg(name).arg(scale));
            }
            for (const auto& [control_name, control] : all.controls) {
                if (control_name != "turbidity") { // its place is in the page
                    EXPECT_GT(colors_in(image, control->rect(), scale).size(), 2U)
                        << control_name << ' ' << name << ' ' << scale;
                }
            }
        }
    }
    system.set_theme(WindowTheme::system);
    EXPECT_GT(mean_gray(images["light1"]), 190);
    EXPECT_LT(mean_gray(images["dark1"]), 90);
    // Twice as fine, and not merely enlarged.
    const QImage& fine = images["light2"];
    const QImage enlarged = images["light1"].scaled(fine.size());
    int different = 0;
    for (int y = 0; y < fine.height(); ++y) {
        for (int x = 0; x < fine.width(); ++x) {
            different += fine.pixel(x, y) != enlarged.pixel(x, y) ? 1 : 0;
        }
    }
    EXPECT_GT(different, 2000);
}

} // namespace
