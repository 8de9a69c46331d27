#include <CLI/CLI.hpp>
#include <cstdio>

#include "commands.h"

namespace {

using namespace rastrel_cli;

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

constexpr const char* kExamples = R"(Examples:
  rastrel info sheet.bmp scan.qvi
  rastrel convert sheet.bmp sheet.qvi
  rastrel convert --crop 100,50,640,480 --depth 24 sheet.bmp detail.bmp
  rastrel convert --type qvi north.bmp south.bmp archive/
  rastrel convert --compress deflate sheet.bmp sheet.tif
  rastrel convert --quality 85 sheet.png sheet.jpg
  rastrel stack --compress lzw north.tif middle.tif south.tif tall.tif
  rastrel quantize scene.tif scene.gif
  rastrel resize --percent 25 scan.tif thumbnail.jpg
  rastrel balance --method tails --k 0.5 scene.tif clear.tif
  rastrel blend --mode multiply --weight 0.6 map.bmp hillshade.bmp shaded.bmp
  rastrel mask --color 255,255,255 scene.tif clouds.bmp clear.tif
  rastrel mosaic --key 255,255,255 west.tif east.tif both.tif
  rastrel rectify --cell-size 0.5 points.txt scan.png sheet.tif
  rastrel palette sheet.bmp
  rastrel georef --set 600000,5100000,2 sheet.bmp
  rastrel stats dem.asc
  rastrel hillshade --azimuth 315 --altitude 45 dem.bil shade.bmp
  rastrel relief --ramp atlas --z-factor 2 dem.asc relief.bmp

Rectangles are x,y,width,height in pixels from the upper left corner.
Formats go by their extension or code: bmp 0, jpg 1, gif 2, png 3, tif 4, qvi 5,
bil 6, bip 7, bsq 8, sid 9, ecw 10, fot 11, map 12, gfc 13, gaf 14, jp2 15.
Grids are read from raw samples with a .hdr (bil, bip, bsq, flt) and ESRI ASCII grids (asc, grd).
This version reads and writes bmp, jpg, gif, png, tif, jp2, qvi, bil, bip and bsq.
Exit code: 0 all went well, 1 something failed, 2 wrong usage.)";

int Run(int argc, char** argv) {
    CLI::App app("Raster images for geographic applications.", "rastrel");
    app.set_version_flag("--version", "rastrel " RASTREL_VERSION);
    app.footer(kExamples);
    app.require_subcommand(1);

    Job job;
    AddInfoCommand(app, job);
    AddPaletteCommand(app, job);
    AddConvertCommand(app, job);
    AddQuantizeCommand(app, job);
    AddResizeCommand(app, job);
    AddBalanceCommand(app, job);
    AddBlendCommand(app, job);
    AddMaskCommand(app, job);
    AddStackCommand(app, job);
    AddMosaicCommand(app, job);
    AddRectifyCommand(app, job);
    AddGeorefCommand(app, job);
    AddStatsCommand(app, job);
    AddStretchCommand(app, job);
    AddHillshadeCommand(app, job);
    AddSlopeCommand(app, job);
    AddAspectCommand(app, job);
    AddReliefCommand(app, job);
    AddSmoothCommand(app, job);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool asked_for = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
        app.exit(error);
        return asked_for ? 0 : kExitUsage;
    }
    return job() ? 0 : kExitFailed;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fputs("rastrel: not enough memory\n", stderr);
        return kExitFailed;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "rastrel: %s\n", error.what());
        return kExitFailed;
    }
}
