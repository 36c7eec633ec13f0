#include "Row.h"

int main(int argc, char** argv) {
    Bench::addTextMaps();
    Bench::addNumberMaps();
    Bench::addScalars();
    Bench::addDispatch();
    Bench::addRows();
    Bench::addRecords();
    Bench::addMounts();
    Bench::addProcesses();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
