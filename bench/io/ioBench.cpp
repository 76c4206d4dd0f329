// Reading and writing a 2.6M-triangle mesh in PLY and STL, binary and ASCII, against
// OpenMesh's reader, assimp's importer and a plain read of the file into a fresh buffer,
// the bound any reader of the file pays.
#include <benchmark/benchmark.h>

#include <assimp/scene.h>
#include <assimp/Importer.hpp>

#include <malloc.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/stl/ioStl.h"

using JEV::IO::PLY::ioPly;
using JEV::IO::STL::ioStl;
using JEV::MATH::point3;

// In its own file: OpenMesh's headers warn under -Wall.
size_t openMeshReadFaces(const std::string& path);

namespace {

// A wavy grid of 1141 x 1141 vertices: 2.6M triangles, written once in the four forms
// into a temporary folder that is removed at exit.
struct benchFiles {
  std::filesystem::path dir;
  std::vector<point3<float>> positions;
  std::vector<unsigned> triangles;
  std::vector<point3<float>> normals;

  benchFiles() {
    dir = std::filesystem::temp_directory_path() /
          ("jev3d-bench-io-" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(dir);
    const unsigned n = 1141;
    positions.reserve(size_t(n) * n);
    for (unsigned y = 0; y < n; ++y) {
      for (unsigned x = 0; x < n; ++x) {
        const float u = float(x) / float(n - 1), v = float(y) / float(n - 1);
        positions.push_back(
            {u * 3.7f, v * 2.9f, 0.13f * std::sin(17.0f * u) * std::cos(11.0f * v)});
      }
    }
    triangles.reserve(size_t(n - 1) * (n - 1) * 6);
    for (unsigned y = 0; y + 1 < n; ++y) {
      for (unsigned x = 0; x + 1 < n; ++x) {
        const unsigned i = y * n + x;
        triangles.insert(triangles.end(), {i, i + 1, i + n + 1, i, i + n + 1, i + n});
      }
    }
    for (size_t t = 0; t < triangles.size(); t += 3) {
      const point3<float>& a = positions[triangles[t]];
      normals.push_back(
          point3<float>::cross(positions[triangles[t + 1]] - a, positions[triangles[t + 2]] - a)
              .normalize());
    }
    ioPly::writePlyToFile(path("binary.ply"), positions, {}, {}, {}, triangles, true);
    ioPly::writePlyToFile(path("ascii.ply"), positions, {}, {}, {}, triangles, false);
    ioStl::writeStlToFile(path("binary.stl"), positions, triangles, normals, true);
    ioStl::writeStlToFile(path("ascii.stl"), positions, triangles, normals, false);
  }
  ~benchFiles() {
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
  }
  std::string path(const char* name) const { return (dir / name).string(); }
  size_t triangleCount() const { return triangles.size() / 3; }
};

const benchFiles& files() {
  static const benchFiles instance;
  return instance;
}

void setCounters(benchmark::State& state, const std::string& path) {
  const double bytes = double(std::filesystem::file_size(path));
  const double iterations = double(state.iterations());
  state.counters["MB/s"] =
      benchmark::Counter(bytes * iterations / 1e6, benchmark::Counter::kIsRate);
  state.counters["Mtri/s"] = benchmark::Counter(double(files().triangleCount()) * iterations / 1e6,
                                                benchmark::Counter::kIsRate);
  state.counters["MB"] = bytes / 1e6;
}

void plainRead(benchmark::State& state, const char* name) {
  const std::string path = files().path(name);
  const size_t size = std::filesystem::file_size(path);
  for (auto _ : state) {
    std::unique_ptr<char[]> buffer(new char[size]);
    FILE* f = std::fopen(path.c_str(), "rb");
    const size_t got = std::fread(buffer.get(), 1, size, f);
    std::fclose(f);
    benchmark::DoNotOptimize(buffer.get());
    if (got != size) state.SkipWithError("short read");
  }
  setCounters(state, path);
}

void jev3dPlyRead(benchmark::State& state, const char* name) {
  const std::string path = files().path(name);
  for (auto _ : state) {
    std::vector<point3<float>> positions;
    std::vector<unsigned> triangles;
    unsigned v = 0, t = 0;
    if (!ioPly::readPlyFromFile(path, positions, v, triangles, t)) state.SkipWithError("read");
    if (t != files().triangleCount()) state.SkipWithError("count");
  }
  setCounters(state, path);
}

void jev3dStlRead(benchmark::State& state, const char* name) {
  const std::string path = files().path(name);
  for (auto _ : state) {
    std::vector<point3<float>> positions, normals;
    if (!ioStl::readStlFromFile(path, positions, normals)) state.SkipWithError("read");
    if (normals.size() != files().triangleCount()) state.SkipWithError("count");
  }
  setCounters(state, path);
}

void openMeshRead(benchmark::State& state, const char* name) {
  const std::string path = files().path(name);
  for (auto _ : state)
    if (openMeshReadFaces(path) != files().triangleCount()) state.SkipWithError("read");
  setCounters(state, path);
}

void assimpRead(benchmark::State& state, const char* name) {
  const std::string path = files().path(name);
  for (auto _ : state) {
    Assimp::Importer importer;
    const aiScene* scene = importer.ReadFile(path, 0);
    if (!scene || scene->mNumMeshes == 0) {
      state.SkipWithError("read");
      break;
    }
    size_t faces = 0;
    for (unsigned m = 0; m < scene->mNumMeshes; ++m) faces += scene->mMeshes[m]->mNumFaces;
    if (faces != files().triangleCount()) state.SkipWithError("count");
  }
  setCounters(state, path);
}

void jev3dPlyWrite(benchmark::State& state, bool binary) {
  const std::string path = files().path(binary ? "out.ply" : "out-ascii.ply");
  for (auto _ : state) {
    std::remove(path.c_str());
    if (!ioPly::writePlyToFile(path, files().positions, {}, {}, {}, files().triangles, binary))
      state.SkipWithError("write");
  }
  setCounters(state, path);
  std::remove(path.c_str());
}

void jev3dStlWrite(benchmark::State& state, bool binary) {
  const std::string path = files().path(binary ? "out.stl" : "out-ascii.stl");
  for (auto _ : state) {
    std::remove(path.c_str());
    if (!ioStl::writeStlToFile(path, files().positions, files().triangles, files().normals, binary))
      state.SkipWithError("write");
  }
  setCounters(state, path);
  std::remove(path.c_str());
}

// Registered by name so that compared pairs read <case>/jev3d, <case>/openmesh...
const bool registered = [] {
  // Every large block is mapped fresh and returned when freed, as in a process that opens
  // one file: readers and the plain read then all pay for first touching their memory,
  // instead of some reusing blocks that the allocator kept from the last iteration.
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
  struct readCase {
    const char* name;
    const char* file;
    void (*jev3d)(benchmark::State&, const char*);
  };
  for (const readCase& c : {readCase{"plyBinaryRead", "binary.ply", jev3dPlyRead},
                            readCase{"plyAsciiRead", "ascii.ply", jev3dPlyRead},
                            readCase{"stlBinaryRead", "binary.stl", jev3dStlRead},
                            readCase{"stlAsciiRead", "ascii.stl", jev3dStlRead}}) {
    const std::string name = c.name;
    // The bound first, so that it runs with the allocator in the state the reader finds.
    benchmark::RegisterBenchmark((name + "/plainread").c_str(), plainRead, c.file)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/jev3d").c_str(), c.jev3d, c.file)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/openmesh").c_str(), openMeshRead, c.file)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/assimp").c_str(), assimpRead, c.file)
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::RegisterBenchmark("plyBinaryWrite/jev3d", jev3dPlyWrite, true)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("plyAsciiWrite/jev3d", jev3dPlyWrite, false)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("stlBinaryWrite/jev3d", jev3dStlWrite, true)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("stlAsciiWrite/jev3d", jev3dStlWrite, false)
      ->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace
