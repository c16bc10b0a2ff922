// Renders the demonstration scene: render_demo OUT [width height passes altitude turbidity threads
// denoise]
#include "renderer/denoise.h"
#include "renderer/image_file.h"
#include "renderer/renderer.h"
#include "tests/renderer/demo_scene.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>

int main(int argc, char** argv) try {
    const auto number = [&](int i, double other) { return argc > i ? std::atof(argv[i]) : other; };
    if (argc < 2) {
        std::puts(
            "usage: render_demo OUT [width height passes altitude turbidity threads denoise]");
        return 2;
    }
    renderer::RenderSettings settings;
    settings.width = static_cast<int>(number(2, 600));
    settings.height = static_cast<int>(number(3, 400));
    settings.passes = static_cast<int>(number(4, 8));
    settings.threads = static_cast<int>(number(7, 0));
    settings.clamp_factor = 2;
    const auto scene =
        demo::make_scene(static_cast<float>(number(5, 40)), static_cast<float>(number(6, 2.5)));
    renderer::Renderer renderer(scene, settings.threads);
    renderer::Film film;
    double seconds = 0;
    renderer.render(settings, film, [&](const renderer::Progress& p) {
        seconds = p.elapsed_seconds;
        return true;
    });
    std::printf("%zu triangles, %.2f s, %.0f paths/s, exposure %g\n", renderer.triangle_count(),
                seconds,
                double(settings.width) * settings.height * settings.passes *
                    settings.samples_per_pass / seconds,
                renderer::automatic_exposure(film));
    if (number(8, 0) > 0) {
        const auto start = std::chrono::steady_clock::now();
        renderer::denoise(film, {static_cast<float>(number(8, 0))});
        std::printf(
            "denoised in %.2f s\n",
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    renderer::save_image(argv[1], film, {});
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "render_demo: %s\n", error.what());
    return 1;
}
