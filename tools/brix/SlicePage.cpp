#include "SlicePage.h"

#include "Report.h"
#include "Units.h"

namespace brix::tools {
namespace {

constexpr double BareMargin = 4;

bool IsBlank(const Raster& raster)
{
    for (std::int64_t row = 0; row < raster.Height(); ++row)
        for (std::int64_t column = 0; column < raster.Width(); ++column)
            if (raster.At(column, row).red == Ink.red) return false;
    return true;
}

void Save(const std::filesystem::path& output, const DrawnPage& drawn)
{
    SavePicture(output, drawn.content);
    PrintStep("picture", output.string() + ": " + std::to_string(drawn.width) + " x " + std::to_string(drawn.height) + " pixels");
}

DrawnPage DrawBare(const std::vector<Panel>& panels, PictureFormat format)
{
    double width = BareMargin;
    double height = 0;
    for (const Panel& panel : panels) {
        width += panel.Width() + BareMargin;
        height = std::max(height, panel.Height() + 2 * BareMargin);
    }
    Canvas canvas(format, width, height);
    double x = BareMargin;
    for (const Panel& panel : panels) {
        canvas.Image(panel.raster, x, height - BareMargin - panel.Height(), panel.cellWidth, panel.cellHeight);
        x += panel.Width() + BareMargin;
    }
    return {canvas.Finish(), static_cast<std::int64_t>(width), static_cast<std::int64_t>(height)};
}

} // namespace

void SaveSlices(const std::filesystem::path& output, const VoxelModel<bool>& model, const std::vector<NamedSlice>& slices,
                const std::string& title, const SlicePageOptions& options)
{
    const Axes& axes = model.AxesRef();
    const Box box = FilledBox(model, options.lod);
    const std::int64_t scale = options.scale > 0 ? options.scale : ScaleForSize(axes, options.lod, box, 600);
    std::vector<Panel> panels;
    for (const auto& [position, slice] : slices) {
        const std::string place =
            std::string(1, "xyz"[static_cast<int>(position.axis)]) + " = " + WithUnit(position.coordinate, options.unit);
        panels.push_back(MakePanel(axes, options.lod, slice.axis, DrawSlice({{model, Ink}}, options.lod, slice, box), scale));
        if (IsBlank(panels.back().raster))
            throw std::runtime_error("The slice at " + place + " would be blank: no voxel is filled there.");
        panels.back().title = position.axis == Axis::Z ? "Plan" : "Section";
        panels.back().note = "at " + place;
    }
    if (options.isBare) return Save(output, DrawBare(panels, FormatOf(output)));
    const std::string voxel = "voxels " + WithUnit(axes.WorldVoxelWidth(options.lod), options.unit) + " wide, " +
                              WithUnit(axes.WorldVoxelHeight(), options.unit) + " high";
    SavePage(output, {title, voxel, options.unit, LengthOfPixel(axes, options.lod, scale), {{"", std::move(panels), {}}}});
}

void SavePage(const std::filesystem::path& output, const Page& page) { Save(output, DrawPage(page, FormatOf(output))); }

} // namespace brix::tools
