// GDAL's terrain functions on the same ground in memory, where libgdal-dev is installed: one of the
// forms that the library's are compared with.

#include <benchmark/benchmark.h>
#include <gdal.h>
#include <gdal_utils.h>

#include <memory>
#include <string>
#include <vector>

#include "arrays.h"

namespace rastrel_bench {
namespace {

struct CloseDataset {
    void operator()(GDALDatasetH dataset) const { GDALClose(dataset); }
};
using Dataset = std::unique_ptr<void, CloseDataset>;

template <class Sample>
constexpr GDALDataType kType = GDT_Float32;
template <>
constexpr GDALDataType kType<std::uint8_t> = GDT_Byte;
template <>
constexpr GDALDataType kType<std::int16_t> = GDT_Int16;
template <>
constexpr GDALDataType kType<std::int32_t> = GDT_Int32;

template <class Sample>
Dataset InMemory() {
    Dataset dataset(
        GDALCreate(GDALGetDriverByName("MEM"), "", kSide, kSide, 1, kType<Sample>, nullptr));
    double transform[6] = {0, 1 / kScale, 0, 0, 0, -1 / kScale};
    GDALSetGeoTransform(dataset.get(), transform);
    if (GDALRasterIO(GDALGetRasterBand(dataset.get(), 1), GF_Write, 0, 0, kSide, kSide,
                     const_cast<Sample*>(Ground<Sample>().data()), kSide, kSide, kType<Sample>, 0,
                     0) != CE_None)
        dataset.reset();
    return dataset;
}

template <class Sample>
void Process(benchmark::State& state, const char* what) {
    const Dataset source = InMemory<Sample>();
    std::string options[] = {"-of", "MEM"};
    char* arguments[] = {options[0].data(), options[1].data(), nullptr};
    GDALDEMProcessingOptions* parsed = GDALDEMProcessingOptionsNew(arguments, nullptr);
    RunCold(state, [&] {
        int error = 0;
        const Dataset result(GDALDEMProcessing("", source.get(), what, nullptr, parsed, &error));
        if (!result) state.SkipWithError("GDAL failed");
    });
    GDALDEMProcessingOptionsFree(parsed);
}

template <class Sample>
void AddType(const std::string& type) {
    for (const char* what : {"hillshade", "slope", "aspect"})
        AddSlow(std::string(what) + "_" + type + "/GDAL",
                [what](benchmark::State& state) { Process<Sample>(state, what); });
}

[[maybe_unused]] const bool kAdded = [] {
    GDALAllRegister();
    AddType<std::uint8_t>("byte");
    AddType<std::int16_t>("short");
    AddType<std::int32_t>("int");
    AddType<float>("float");
    return true;
}();

}  // namespace
}  // namespace rastrel_bench
