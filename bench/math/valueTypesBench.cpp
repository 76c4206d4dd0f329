// The value types in the loops the mesh code runs: points through an affine matrix, unit
// normals, and 3×3 decompositions, each against Eigen doing the same work.

#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#include <Eigen/Geometry>
#include <random>
#include <vector>

#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"

using namespace JEV::MATH;

namespace {

constexpr int pointCount = 1 << 20;

std::vector<point3f> randomPoints() {
  std::mt19937 rng(1);
  std::uniform_real_distribution<float> u(-10.0f, 10.0f);
  std::vector<point3f> points(pointCount);
  for (point3f& p : points) p = point3f(u(rng), u(rng), u(rng));
  return points;
}

const matrix4f& affine() {
  static const matrix4f m = matrix4f::getRotateRad(0.7f, point3f(1, 2, 3)) *
                            matrix4f::getScale(1.5f, 1.5f, 1.5f) * matrix4f::getTranslate(1, 2, 3);
  return m;
}

void transformPoints_jev3d(benchmark::State& state) {
  const std::vector<point3f> in = randomPoints();
  std::vector<point3f> out(in.size());
  const matrix4f m = affine();
  for (auto _ : state) {
    for (size_t i = 0; i < in.size(); ++i) out[i] = in[i] * m;
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * pointCount);
}
BENCHMARK(transformPoints_jev3d)->Name("transformPoints/jev3d")->Unit(benchmark::kMillisecond);

void transformPoints_eigen(benchmark::State& state) {
  const std::vector<point3f> raw = randomPoints();
  const Eigen::Map<const Eigen::Matrix3Xf> in(&raw[0].x, 3, pointCount);
  Eigen::Matrix3Xf out(3, pointCount);
  // The same transform in Eigen's column sense.
  const Eigen::Matrix4f column =
      Eigen::Map<const Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(affine().data()).transpose();
  const Eigen::Affine3f a(column);
  for (auto _ : state) {
    out.noalias() = a * in;
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * pointCount);
}
BENCHMARK(transformPoints_eigen)->Name("transformPoints/eigen")->Unit(benchmark::kMillisecond);

void normalize_jev3d(benchmark::State& state) {
  const std::vector<point3f> in = randomPoints();
  std::vector<point3f> v(in);
  for (auto _ : state) {
    v = in;
    for (point3f& p : v) p.normalize();
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * pointCount);
}
BENCHMARK(normalize_jev3d)->Name("normalize/jev3d")->Unit(benchmark::kMillisecond);

void normalize_eigen(benchmark::State& state) {
  const std::vector<point3f> raw = randomPoints();
  const Eigen::Map<const Eigen::Matrix3Xf> in(&raw[0].x, 3, pointCount);
  Eigen::Matrix3Xf v(3, pointCount);
  for (auto _ : state) {
    v = in;
    v.colwise().normalize();
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * pointCount);
}
BENCHMARK(normalize_eigen)->Name("normalize/eigen")->Unit(benchmark::kMillisecond);

std::vector<matrix3d> randomMatrices() {
  std::mt19937 rng(2);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  std::vector<matrix3d> ms(1024);
  for (matrix3d& m : ms)
    for (int i = 0; i < 9; ++i) m[i] = u(rng);
  return ms;
}

void svd3_jev3d(benchmark::State& state) {
  const std::vector<matrix3d> ms = randomMatrices();
  matrix3d l, d, rt;
  for (auto _ : state) {
    for (const matrix3d& m : ms) {
      m.singularValueDecomposition(l, d, rt);
      benchmark::DoNotOptimize(d.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * int64_t(ms.size()));
}
BENCHMARK(svd3_jev3d)->Name("svd3/jev3d")->Unit(benchmark::kMicrosecond);

void svd3_eigen(benchmark::State& state) {
  const std::vector<matrix3d> ms = randomMatrices();
  for (auto _ : state) {
    for (const matrix3d& m : ms) {
      const Eigen::JacobiSVD<Eigen::Matrix3d> svd(
          Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(m.data()),
          Eigen::ComputeFullU | Eigen::ComputeFullV);
      benchmark::DoNotOptimize(svd.singularValues().data());
    }
  }
  state.SetItemsProcessed(state.iterations() * int64_t(ms.size()));
}
BENCHMARK(svd3_eigen)->Name("svd3/eigen")->Unit(benchmark::kMicrosecond);

void eigen3_jev3d(benchmark::State& state) {
  std::vector<matrix3d> ms = randomMatrices();
  for (matrix3d& m : ms) m = m + m.getTranspose();
  matrix3d rot, diag;
  for (auto _ : state) {
    for (const matrix3d& m : ms) {
      m.eigenDecomposition(rot, diag);
      benchmark::DoNotOptimize(diag.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * int64_t(ms.size()));
}
BENCHMARK(eigen3_jev3d)->Name("symmetricEigen3/jev3d")->Unit(benchmark::kMicrosecond);

void eigen3_eigen(benchmark::State& state) {
  std::vector<matrix3d> ms = randomMatrices();
  for (matrix3d& m : ms) m = m + m.getTranspose();
  for (auto _ : state) {
    for (const matrix3d& m : ms) {
      const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(
          Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(m.data()));
      benchmark::DoNotOptimize(solver.eigenvalues().data());
    }
  }
  state.SetItemsProcessed(state.iterations() * int64_t(ms.size()));
}
BENCHMARK(eigen3_eigen)->Name("symmetricEigen3/eigen")->Unit(benchmark::kMicrosecond);

}  // namespace
