// Statistics and linear stretch of the host's own arrays, whose pointers and sizes are trusted.

#include "process/statistics.h"
#include "process/stretch.h"
#include "rastrel.h"

using namespace rastrel;

namespace {

template <class Sample>
void GetStatistics(const Sample* source, int rows, int columns, int step, double* mean,
                   double* deviation) {
    const Statistics statistics = StatisticsOf(Grid(source, rows, columns), step);
    *mean = statistics.mean;
    *deviation = statistics.deviation;
}

template <class Sample>
void GetStatisticsEx(const Sample* source, int rows, int columns, int step, double* minimum,
                     double* mean, double* maximum, double* deviation) {
    const Statistics statistics = StatisticsOf(Grid(source, rows, columns), step);
    *minimum = statistics.minimum;
    *mean = statistics.mean;
    *maximum = statistics.maximum;
    *deviation = statistics.deviation;
}

template <class Sample>
void LinearStretch(uint8_t* output, const Sample* source, int rows, int columns, double k) {
    const Grid grid(source, rows, columns);
    Stretch(source, grid.Count(), BoundsAroundMean(grid, k), output);
}

template <class Sample>
void LinearStretchEx(uint8_t* output, const Sample* source, int rows, int columns, double k,
                     double* low, double* high) {
    const Grid grid(source, rows, columns);
    const StretchBounds bounds = BoundsAroundMeanOrExtremes(grid, k);
    Stretch(source, grid.Count(), bounds, output);
    *low = bounds.low;
    *high = bounds.high;
}

}  // namespace

void RASTREL_CALL Rastrel_StatisticsByte(const uint8_t* source, int rows, int columns, int step,
                                         double* mean, double* deviation) {
    GetStatistics(source, rows, columns, step, mean, deviation);
}

void RASTREL_CALL Rastrel_StatisticsShort(const int16_t* source, int rows, int columns, int step,
                                          double* mean, double* deviation) {
    GetStatistics(source, rows, columns, step, mean, deviation);
}

void RASTREL_CALL Rastrel_StatisticsInt(const int32_t* source, int rows, int columns, int step,
                                        double* mean, double* deviation) {
    GetStatistics(source, rows, columns, step, mean, deviation);
}

void RASTREL_CALL Rastrel_StatisticsFloat(const float* source, int rows, int columns, int step,
                                          double* mean, double* deviation) {
    GetStatistics(source, rows, columns, step, mean, deviation);
}

void RASTREL_CALL Rastrel_StatisticsExByte(const uint8_t* source, int rows, int columns, int step,
                                           double* minimum, double* mean, double* maximum,
                                           double* deviation) {
    GetStatisticsEx(source, rows, columns, step, minimum, mean, maximum, deviation);
}

void RASTREL_CALL Rastrel_StatisticsExShort(const int16_t* source, int rows, int columns, int step,
                                            double* minimum, double* mean, double* maximum,
                                            double* deviation) {
    GetStatisticsEx(source, rows, columns, step, minimum, mean, maximum, deviation);
}

void RASTREL_CALL Rastrel_StatisticsExInt(const int32_t* source, int rows, int columns, int step,
                                          double* minimum, double* mean, double* maximum,
                                          double* deviation) {
    GetStatisticsEx(source, rows, columns, step, minimum, mean, maximum, deviation);
}

void RASTREL_CALL Rastrel_StatisticsExFloat(const float* source, int rows, int columns, int step,
                                            double* minimum, double* mean, double* maximum,
                                            double* deviation) {
    GetStatisticsEx(source, rows, columns, step, minimum, mean, maximum, deviation);
}

void RASTREL_CALL Rastrel_LinearStretchByte(uint8_t* output, const uint8_t* source, int rows,
                                            int columns, double k) {
    LinearStretch(output, source, rows, columns, k);
}

void RASTREL_CALL Rastrel_LinearStretchShort(uint8_t* output, const int16_t* source, int rows,
                                             int columns, double k) {
    LinearStretch(output, source, rows, columns, k);
}

void RASTREL_CALL Rastrel_LinearStretchInt(uint8_t* output, const int32_t* source, int rows,
                                           int columns, double k) {
    LinearStretch(output, source, rows, columns, k);
}

void RASTREL_CALL Rastrel_LinearStretchFloat(uint8_t* output, const float* source, int rows,
                                             int columns, double k) {
    LinearStretch(output, source, rows, columns, k);
}

void RASTREL_CALL Rastrel_LinearStretchExByte(uint8_t* output, const uint8_t* source, int rows,
                                              int columns, double k, double* low, double* high) {
    LinearStretchEx(output, source, rows, columns, k, low, high);
}

void RASTREL_CALL Rastrel_LinearStretchExShort(uint8_t* output, const int16_t* source, int rows,
                                               int columns, double k, double* low, double* high) {
    LinearStretchEx(output, source, rows, columns, k, low, high);
}

void RASTREL_CALL Rastrel_LinearStretchExInt(uint8_t* output, const int32_t* source, int rows,
                                             int columns, double k, double* low, double* high) {
    LinearStretchEx(output, source, rows, columns, k, low, high);
}

void RASTREL_CALL Rastrel_LinearStretchExFloat(uint8_t* output, const float* source, int rows,
                                               int columns, double k, double* low, double* high) {
    LinearStretchEx(output, source, rows, columns, k, low, high);
}
