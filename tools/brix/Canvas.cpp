#include "Canvas.h"

#include "OutputFile.h"
#include "Report.h"

namespace brix::tools {

Raster::Raster(std::int64_t width, std::int64_t height, Colour background) : width_(width), height_(height)
{
    if (static_cast<double>(width) * static_cast<double>(height) > MaxPixels)
        throw std::runtime_error("The picture would have " + std::to_string(width) + " x " + std::to_string(height) +
                                 " cells. Choose a coarser level.");
    cells_.assign(static_cast<std::size_t>(width * height), background);
}

PictureFormat FormatOf(const std::filesystem::path& filePath)
{
    RequireCanvas();
    const std::string ending = filePath.extension().string();
    if (ending.empty() || ending == ".png" || ending == ".PNG") return PictureFormat::PNG;
    if (ending == ".svg" || ending == ".SVG") return PictureFormat::SVG;
    if (ending == ".pdf" || ending == ".PDF") return PictureFormat::PDF;
    throw UsageError("A picture is written to a file that ends in .png, .svg or .pdf, not to \"" + filePath.string() + "\".");
}

void SavePicture(const std::filesystem::path& filePath, const std::string& content)
{
    OutputFile file(filePath, static_cast<double>(content.size()));
    file.Write(content);
    file.Commit();
    ReportFile(filePath, {{"format", std::string("picture")}, {"bytes", content.size()}});
}

} // namespace brix::tools
