// Piecewise constant densities on a line and on the unit square.
#include "renderer/distribution.h"

#include <algorithm>

namespace renderer {

Distribution1d::Distribution1d(std::span<const float> weights)
  : cumulative_(weights.size() + 1, 0.0f)
  , density_(weights.size(), 1.0f) {
    const auto n = static_cast<double>(weights.size());
    double sum = 0;
    for (const float w : weights)
        sum += w;
    total_ = static_cast<float>(sum / n);
    double running = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        if (sum > 0)
            density_[i] = static_cast<float>(weights[i] * n / sum);
        running += sum > 0 ? weights[i] / sum : 1 / n;
        cumulative_[i + 1] = static_cast<float>(running);
    }
    cumulative_.back() = 1;
}

float Distribution1d::sample(float u, float& pdf, int& cell) const {
    const auto above = std::upper_bound(cumulative_.begin(), cumulative_.end(), u);
    cell = std::clamp(static_cast<int>(above - cumulative_.begin()) - 1, 0, size() - 1);
    const auto i = static_cast<std::size_t>(cell);
    const float width = cumulative_[i + 1] - cumulative_[i];
    const float part = width > 0 ? (u - cumulative_[i]) / width : 0;
    pdf = density_[i];
    const float x =
        (static_cast<float>(cell) + std::min(part, 0.999999f)) / static_cast<float>(size());
    return std::min(x, 0x1.fffffep-1f);
}

namespace {

std::vector<Distribution1d> make_rows(std::span<const float> weights, int width, int height) {
    std::vector<Distribution1d> rows;
    rows.reserve(static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        rows.emplace_back(weights.subspan(static_cast<std::size_t>(y) * width, width));
    return rows;
}

std::vector<float> row_totals(const std::vector<Distribution1d>& rows) {
    std::vector<float> totals;
    totals.reserve(rows.size());
    for (const auto& row : rows)
        totals.push_back(row.total());
    return totals;
}

int cell_of(float x, int size) {
    return std::clamp(static_cast<int>(x * static_cast<float>(size)), 0, size - 1);
}

} // namespace

Distribution2d::Distribution2d(std::span<const float> weights, int width, int height)
  : rows_(make_rows(weights, width, height))
  , marginal_(row_totals(rows_)) {}

Vec2 Distribution2d::sample(Vec2 u, float& pdf) const {
    float pdf_x = 0, pdf_y = 0;
    int row = 0, column = 0;
    const float y = marginal_.sample(u.y, pdf_y, row);
    const float x = rows_[static_cast<std::size_t>(row)].sample(u.x, pdf_x, column);
    pdf = pdf_x * pdf_y;
    return {x, y};
}

float Distribution2d::pdf(Vec2 at) const {
    const int row = cell_of(at.y, marginal_.size());
    const auto& line = rows_[static_cast<std::size_t>(row)];
    return marginal_.pdf(row) * line.pdf(cell_of(at.x, line.size()));
}

} // namespace renderer
