/// Writes sample documents into a folder: GenerateDocuments FOLDER COUNT ANNOTATIONS

#include "benchmarks/end-to-end/SampleDocument.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: " << argv[0] << " FOLDER COUNT ANNOTATIONS\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (int index = 0; index < std::atoi(argv[2]); ++index) {
        std::ofstream file(folder / (std::to_string(index) + ".json"), std::ios::binary);
        if (!(file << ktBenchmark::makeSampleDocument(ktBenchmark::SampleContent::Callouts, std::atoi(argv[3]), index)
                   << std::flush)) {
            std::cerr << "cannot write to " << folder << '\n';
            return 1;
        }
    }
}
