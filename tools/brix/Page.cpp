#include "Page.h"

#include "Report.h"

#include <algorithm>
#include <cmath>

namespace brix::tools {
namespace {

constexpr double Margin = 28;
constexpr double Gap = 24;
constexpr double FullRow = 1500; // panels that would make a row wider than this go to the next one
constexpr double LeastWidth = 560;
constexpr double CaptionHeight = 26;
constexpr double LineHeight = 22;
constexpr double BarHeight = 14;

const TextStyle Title{22, true};
const TextStyle Subtitle{13, false, Muted};
const TextStyle Heading{16, true};
const TextStyle PanelTitle{14, true};
const TextStyle Note{13, false, Muted};
const TextStyle Label{13};

double CaptionWidth(const Panel& panel) { return TextWidth(panel.title, PanelTitle) + 10 + TextWidth(panel.note, Note); }
double SlotWidth(const Panel& panel) { return std::max(panel.Width(), CaptionWidth(panel)); }

using Row = std::vector<const Panel*>;

double RowWidth(const Row& row)
{
    double width = -Gap;
    for (const Panel* panel : row) width += SlotWidth(*panel) + Gap;
    return width;
}

std::vector<Row> RowsOf(const Section& section)
{
    std::vector<Row> rows;
    for (const Panel& panel : section.panels) {
        if (rows.empty() || RowWidth(rows.back()) + Gap + SlotWidth(panel) > FullRow) rows.emplace_back();
        rows.back().push_back(&panel);
    }
    return rows;
}

double WidthOf(const Page& page)
{
    double width = std::max({LeastWidth, TextWidth(page.title, Title), TextWidth(page.subtitle, Subtitle)});
    for (const Section& section : page.sections)
        for (const Row& row : RowsOf(section)) width = std::max(width, RowWidth(row));
    return std::ceil(width);
}

// Draws from the top down. Without a canvas it only measures.
class Typesetter
{
public:
    Typesetter(Canvas* canvas, const Page& page, double width) : canvas_(canvas), page_(page), width_(width) {}

    /// The height of the page.
    double Run()
    {
        Text(page_.title, 0, 20, Title);
        Text(page_.subtitle, 0, 42, Subtitle);
        y_ += 56;
        for (const Section& section : page_.sections) Add(section);
        AddScaleBar();
        return std::ceil(y_ + Margin);
    }

private:
    void Text(const std::string& text, double x, double y, const TextStyle& style)
    {
        if (canvas_ != nullptr && !text.empty()) canvas_->Text(text, Margin + x, y_ + y, style);
    }

    void Add(const Section& section)
    {
        if (!section.title.empty()) {
            Text(section.title, 0, 22, Heading);
            y_ += 32;
        }
        for (const Row& row : RowsOf(section)) Add(row);
        AddKey(section.key);
        if (section.scale) Add(*section.scale);
        y_ += 16;
    }

    // Panels stand on a common ground line.
    void Add(const Row& row)
    {
        double highest = 0;
        for (const Panel* panel : row) highest = std::max(highest, panel->Height());
        double x = 0;
        for (const Panel* panel : row) {
            Add(*panel, x, highest - panel->Height());
            x += SlotWidth(*panel) + Gap;
        }
        y_ += CaptionHeight + std::ceil(highest) + 12;
    }

    void Add(const Panel& panel, double x, double y)
    {
        if (canvas_ == nullptr) return;
        Text(panel.title, x, y + 17, PanelTitle);
        Text(panel.note, x + TextWidth(panel.title, PanelTitle) + 10, y + 17, Note);
        const Spot corner{Margin + std::round(x), std::round(y_ + y + CaptionHeight)};
        canvas_->Image(panel.raster, corner.x, corner.y, panel.cellWidth, panel.cellHeight);
        canvas_->Clip(corner.x, corner.y, panel.Width(), panel.Height());
        if (panel.draw) panel.draw(*canvas_, corner);
        canvas_->Unclip();
    }

    void AddKey(const std::vector<KeyEntry>& key)
    {
        if (key.empty()) return;
        double x = 0;
        for (const KeyEntry& entry : key) {
            const double width = 22 + TextWidth(entry.text, Label);
            if (x > 0 && x + width > width_) {
                x = 0;
                y_ += LineHeight;
            }
            if (canvas_ != nullptr) {
                canvas_->Fill(Margin + x, y_ + 4, 15, 15, Mixed(entry.colour, Ink, 0.35));
                canvas_->Fill(Margin + x + 1, y_ + 5, 13, 13, entry.colour);
            }
            Text(entry.text, x + 22, 16, Label);
            x += width + 22;
        }
        y_ += LineHeight + 4;
    }

    void Add(const LabelledScale& scale)
    {
        const ColourScale& colours = scale.colours;
        const double length = std::min(width_, 720.0);
        const double range = colours.Largest() - colours.Least();
        Text(scale.title, 0, 16, Label);
        y_ += LineHeight + 4;
        for (double x = 0; x < length && canvas_ != nullptr; ++x) {
            const double value = colours.Least() + range * x / length;
            canvas_->Fill(Margin + x, y_, std::min(1.0, length - x), BarHeight, colours.At(value));
        }
        double free = -1; // where the last number ended
        for (const double value : colours.Contours()) {
            const std::string text = WithUnit(value, page_.unit);
            const double half = TextWidth(text, Label) / 2;
            const double at = (value - colours.Least()) / range * length;
            const double middle = std::clamp(at, half, std::max(half, width_ - half));
            if (canvas_ != nullptr) canvas_->Fill(Margin + std::min(at, length - 1), y_, 1, BarHeight + 5, Ink);
            if (middle - half < free) continue;
            Text(text, middle - half, BarHeight + 19, Label);
            free = middle + half + 8;
        }
        y_ += BarHeight + 30;
    }

    // A round length of about a sixth of the page.
    void AddScaleBar()
    {
        const double length = RoundStep(page_.lengthOfPixel * width_ / 12);
        const double pixels = length / page_.lengthOfPixel;
        if (canvas_ != nullptr) {
            canvas_->Fill(Margin, y_ + 8, pixels, 3, Ink);
            canvas_->Fill(Margin, y_ + 3, 1.5, 13, Ink);
            canvas_->Fill(Margin + pixels - 1.5, y_ + 3, 1.5, 13, Ink);
        }
        const std::string unknown = page_.unit.empty() ? " in the units of the file" : "";
        Text(WithUnit(length, page_.unit) + unknown, pixels + 10, 14, Label);
        y_ += 18;
    }

    Canvas* canvas_;
    const Page& page_;
    double width_;
    double y_ = Margin;
};

} // namespace

std::string WithUnit(double length, const std::string& unit)
{
    return Text(length == 0 ? 0.0 : length) + (unit.empty() ? "" : " " + unit);
}

DrawnPage DrawPage(const Page& page, PictureFormat format)
{
    const double width = WidthOf(page);
    const double height = Typesetter(nullptr, page, width).Run();
    Canvas canvas(format, width + 2 * Margin, height);
    Typesetter(&canvas, page, width).Run();
    return {canvas.Finish(), static_cast<std::int64_t>(width + 2 * Margin), static_cast<std::int64_t>(height)};
}

} // namespace brix::tools
