#include "jev3d/algo/measurement/volumeDistance.h"

#include <algorithm>
#include <cmath>

#include "jev3d/algo/holefilling/holeFilling.h"
#include "jev3d/algo/measurement/distance.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/threadJob.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {

namespace {

constexpr float MAX_T = MATH::mathBase<float>::MAX_T();
// The source vertex of a working-copy vertex that the source does not have.
constexpr unsigned int NO_SOURCE = 0xFFFFFFFFu;

struct volumeJob : public SYSTEM::job {
  explicit volumeJob(volumeDistance::modelData* m) : model(m) {}
  volumeDistance::modelData* model;
};

// The library's job runner over a list made here.
class jobRunner : public SYSTEM::threadJob {
 public:
  jobRunner(const SYSTEM::sharedPointer<SYSTEM::delegate>& body, std::vector<SYSTEM::job*> list)
      : threadJob(body) {
    jobs = std::move(list);
  }
};

// Keeps at each vertex the distance of smaller size.
void keepNearest(std::vector<float>& into, const VOXEL::voxelModel& voxels,
                 const std::vector<unsigned int>& sourceOf, const std::vector<float>& found) {
  for (std::size_t p = 0; p < found.size() && p < voxels.sourceVertex.size(); ++p) {
    const unsigned int v = sourceOf[voxels.sourceVertex[p]];
    if (v < into.size() && std::fabs(found[p]) < std::fabs(into[v])) into[v] = found[p];
  }
}

}  // namespace

volumeDistance::volumeDistance() = default;

volumeDistance::~volumeDistance() {
  cancel();
  wait();
}

void volumeDistance::wait() {
  if (worker) {
    worker->join();
    worker.reset();
  }
}

volumeDistance::modelData* volumeDistance::findModel(uint64_t group, uint64_t model) {
  auto g = groups.find(group);
  if (g == groups.end()) return nullptr;
  auto m = g->second.find(model);
  return m == g->second.end() ? nullptr : m->second.get();
}

const volumeDistance::modelData* volumeDistance::getModel(uint64_t group, uint64_t model) const {
  return const_cast<volumeDistance*>(this)->findModel(group, model);
}

void volumeDistance::addModel(uint64_t group, uint64_t model, meshInterface* mesh,
                              const MATH::matrix4<float>& transform, SYSTEM::flags<int> flag) {
  auto data = std::make_unique<modelData>();
  data->source = mesh;
  data->transform = transform;
  data->flag = flag;
  groups[group][model] = std::move(data);
  volumeValid = testValid = colorValid = false;
}

void volumeDistance::update(uint64_t group, uint64_t model) {
  if (modelData* m = findModel(group, model)) {
    m->volumeValid = false;
    m->clone.clear(false);
    m->voxels.clear();
    volumeValid = testValid = colorValid = false;
  }
}

void volumeDistance::updateTransform(uint64_t group, uint64_t model,
                                     const MATH::matrix4<float>& transform) {
  if (modelData* m = findModel(group, model)) {
    m->transform = transform;
    invalidateTest();
  }
}

void volumeDistance::invalidateVolume() {
  for (auto& g : groups)
    for (auto& m : g.second) m.second->volumeValid = false;
  volumeValid = testValid = colorValid = false;
}

void volumeDistance::clear() {
  cancel();
  wait();
  groups.clear();
  skips.clear();
  volumeValid = testValid = colorValid = false;
}

bool volumeDistance::find(const meshInterface* mesh, uint64_t& group, uint64_t& model) const {
  for (const auto& g : groups)
    for (const auto& m : g.second)
      if (m.second->source == mesh) {
        group = g.first;
        model = m.first;
        return true;
      }
  return false;
}

unsigned char volumeDistance::getUniqueId(uint64_t group, uint64_t model) const {
  unsigned int id = 0;
  for (const auto& g : groups)
    for (const auto& m : g.second) {
      if (g.first == group && m.first == model) return id < 255 ? (unsigned char)id : 255;
      ++id;
    }
  return 255;
}

bool volumeDistance::getIndexFromUniqueId(unsigned char id, uint64_t& group,
                                          uint64_t& model) const {
  unsigned int at = 0;
  for (const auto& g : groups)
    for (const auto& m : g.second)
      if (at++ == id && id != 255) {
        group = g.first;
        model = m.first;
        return true;
      }
  return false;
}

void volumeDistance::addSkipTest(uint64_t group1, uint64_t model1, uint64_t group2,
                                 uint64_t model2) {
  threadJobType pair;
  pair.group1 = group1, pair.model1 = model1, pair.group2 = group2, pair.model2 = model2;
  skips.push_back(pair);
}

bool volumeDistance::skipTest(const threadJobType& pair) const {
  for (const threadJobType& s : skips) {
    if (s.group1 == pair.group1 && s.model1 == pair.model1 && s.group2 == pair.group2 &&
        s.model2 == pair.model2)
      return true;
    if (s.group1 == pair.group2 && s.model1 == pair.model2 && s.group2 == pair.group1 &&
        s.model2 == pair.model1)
      return true;
  }
  return false;
}

std::vector<std::unique_ptr<volumeDistance::threadJobType>> volumeDistance::find_all_to_of() const {
  std::vector<std::unique_ptr<threadJobType>> pairs;
  for (auto g1 = groups.begin(); g1 != groups.end(); ++g1)
    for (auto g2 = std::next(g1); g2 != groups.end(); ++g2)
      for (const auto& m1 : g1->second)
        for (const auto& m2 : g2->second) {
          auto pair = std::make_unique<threadJobType>();
          pair->group1 = g1->first, pair->model1 = m1.first;
          pair->group2 = g2->first, pair->model2 = m2.first;
          pairs.push_back(std::move(pair));
        }
  return pairs;
}

void volumeDistance::computeVolume(modelData& model) {
  computeHoleFillingParams closing;
  if (model.clone.vn() == 0 && model.source) {
    editMeshInterface clone(model.clone);
    std::vector<unsigned int> map;
    model.source->copyTo(clone, map);
    model.sourceOf.assign(model.clone.vn(), 0);
    for (unsigned int v = 0; v < map.size(); ++v)
      if (map[v] < model.sourceOf.size()) model.sourceOf[map[v]] = v;
    // Scans come open, and an open surface has no inside to voxelise: the working copy's
    // holes are closed, the source stays as it is. The patch vertices stand for no vertex
    // of the source.
    if (model.clone.fn() > 0) {
      HOLEFILLING::computeTriangulateHole(model.clone, closing);
      model.sourceOf.resize(model.clone.vn(), NO_SOURCE);
    }
  }
  // An empty mesh clears the record: no volume, no transform.
  if (model.clone.fn() == 0 || !VOXEL::intersectionComputation::prepare(
                                   editMeshInterface(model.clone), resolution, model.voxels))
    model.voxels.clear();
  model.volumeValid = true;
}

void volumeDistance::computeVolumeTest(threadJobType& pair) {
  const modelData* a = findModel(pair.group1, pair.model1);
  const modelData* b = findModel(pair.group2, pair.model2);
  if (!a || !b) return;
  VOXEL::intersectionComputation::compute(a->voxels, a->transform, b->voxels, b->transform,
                                          pair.result);
  pair.done = true;
}

void volumeDistance::jobDone() {
  std::lock_guard<std::mutex> hold(progressLock);
  ++jobsDone;
  if (progress && jobCount > 0)
    progress->setValue(std::max(1.0f, 99.0f * float(jobsDone) / float(jobCount)));
}

bool volumeDistance::updateVolume(SYSTEM::callBack* cb) {
  if (volumeRunning || testRunning) return false;
  wait();
  if (cb) cb->setValue(1.0f);
  cancelled = false;
  volumeRunning = true;
  volumeValid = false;
  volumeDone.reset();
  volumeJobs.clear();
  for (auto& g : groups)
    for (auto& m : g.second)
      if (!m.second->volumeValid) volumeJobs.push_back(std::make_unique<volumeJob>(m.second.get()));
  progress = cb;
  jobsDone = 0;
  jobCount = volumeJobs.size();
  worker = std::make_unique<SYSTEM::thread>(
      SYSTEM::makeDelegate(this, &volumeDistance::delegateMainComputeVolume));
  worker->resume();
  return true;
}

void volumeDistance::delegateMainComputeVolume() {
  std::vector<SYSTEM::job*> list;
  for (auto& j : volumeJobs) list.push_back(j.get());
  jobRunner(SYSTEM::makeDelegate(this, &volumeDistance::delegateComputeVolume), list).execute(true);
  bool all = !cancelled;
  for (auto& g : groups)
    for (auto& m : g.second) all = all && m.second->volumeValid;
  volumeValid = all;
  if (progress) progress->setValue(100.0f);
  volumeRunning = false;
  volumeDone.set();
}

void volumeDistance::delegateComputeVolume(SYSTEM::job* j) {
  if (!cancelled) computeVolume(*static_cast<volumeJob*>(j)->model);
  jobDone();
}

bool volumeDistance::updateTest(SYSTEM::callBack* cb) {
  if (volumeRunning || testRunning || !volumeValid) return false;
  wait();
  if (cb) cb->setValue(1.0f);
  cancelled = false;
  testRunning = true;
  testValid = colorValid = false;
  testDone.reset();
  testJobs.clear();
  for (auto& pair : find_all_to_of())
    if (!skipTest(*pair)) testJobs.push_back(std::move(pair));
  progress = cb;
  jobsDone = 0;
  jobCount = testJobs.size();
  worker = std::make_unique<SYSTEM::thread>(
      SYSTEM::makeDelegate(this, &volumeDistance::delegateMainComputeTest));
  worker->resume();
  return true;
}

void volumeDistance::delegateMainComputeTest() {
  std::vector<SYSTEM::job*> list;
  for (auto& j : testJobs) list.push_back(j.get());
  jobRunner(SYSTEM::makeDelegate(this, &volumeDistance::delegateComputeTest), list).execute(true);
  // The jobs are done: only this thread writes the models' vectors now.
  bool all = !cancelled;
  for (auto& g : groups)
    for (auto& m : g.second)
      m.second->distances.assign(m.second->source ? m.second->source->vn() : 0, MAX_T);
  for (const auto& pair : testJobs) {
    all = all && pair->done;
    if (!pair->done) continue;
    modelData* a = findModel(pair->group1, pair->model1);
    modelData* b = findModel(pair->group2, pair->model2);
    keepNearest(a->distances, a->voxels, a->sourceOf, pair->result.firstDistances);
    keepNearest(b->distances, b->voxels, b->sourceOf, pair->result.secondDistances);
  }
  testValid = all;
  if (progress) progress->setValue(100.0f);
  testRunning = false;
  testDone.set();
}

void volumeDistance::delegateComputeTest(SYSTEM::job* j) {
  if (!cancelled) computeVolumeTest(*static_cast<threadJobType*>(j));
  jobDone();
}

bool volumeDistance::updateColor() {
  if (!testValid || testRunning) return false;
  float lo = MAX_T, hi = -MAX_T;
  for (const auto& g : groups)
    for (const auto& m : g.second)
      for (float d : m.second->distances)
        if (d < MAX_T) lo = std::min(lo, d), hi = std::max(hi, d);
  for (auto& g : groups)
    for (auto& m : g.second) {
      meshInterface* mesh = m.second->source;
      if (!mesh) continue;
      if (!mesh->hasVC()) mesh->vertexColorResize(mesh->vn());
      for (unsigned int v = 0; v < mesh->vn() && v < m.second->distances.size(); ++v)
        mesh->vCol(v) = distance::getColor(lo, hi, m.second->distances[v]);
      mesh->invalidateVertexColor();
    }
  colorValid = true;
  return true;
}

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
