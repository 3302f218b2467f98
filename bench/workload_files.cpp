// Writes the benchmark's workload as files, for the measures that run the
// tov program itself (serve_bench.py, batch_times.py): FOLDER/rules.json with
// COUNT transition rules, FOLDER/datamodel.json and FOLDER/edit.json, the edit
// that every rule approves. The workload is the one tov_bench generates, from
// the same code.
//
// Usage: tov_bench_workload_files FOLDER [COUNT]   (COUNT defaults to 100)
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "workload.h"

namespace {

bool writeFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file) {
        std::cerr << "tov_bench_workload_files: cannot write " << path << "\n";
        return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::cerr << "Usage: tov_bench_workload_files FOLDER [COUNT]\n";
        return 2;
    }
    const std::string folder = argv[1];
    const int count = argc == 3 ? std::atoi(argv[2]) : 100;
    if (count < tovbench::kAttributesPerType) {
        std::cerr << "tov_bench_workload_files: COUNT must be at least "
                  << tovbench::kAttributesPerType << "\n";
        return 2;
    }
    const bool written =
        writeFile(folder + "/rules.json", tovbench::transitionRulesDocument(count)) &&
        writeFile(folder + "/datamodel.json", tovbench::dataModelDocument()) &&
        writeFile(folder + "/edit.json", tovbench::editRequest());
    return written ? 0 : 1;
}
