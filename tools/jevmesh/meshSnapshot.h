#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jev3d/editing/editMeshNode.h"

namespace JEVMESH {

// What a snapshot shows: the node's display mode, the image size in pixels and the view,
// turned from the front by `yaw` degrees about the world's y axis, then tilted by `pitch`
// degrees down onto the mesh.
struct snapshotView {
  JEV::MESH::EDITING::EDIT_MESH_DISPLAY_MODE mode = JEV::MESH::EDITING::EDIT_MESH_DISPLAY_OBJECT;
  int width = 640;
  int height = 480;
  float yaw = 30.f;
  float pitch = 20.f;
};

// The grey behind the mesh, in every snapshot.
constexpr std::uint8_t SNAPSHOT_BACKGROUND[3] = {72, 76, 82};

// Takes `node` (made without a renderer) and draws its mesh through a scene of its own (a trackball
// camera framing the mesh's bounding box, a light from the camera) with the OpenGL back end, on a
// window of the platform that needs no display when none is set. `rgba` gets the image top row
// first. False, with a one-line reason in `error`, when no GL context can be made.
bool renderSnapshot(JEV::MESH::EDITING::editMeshNode* node, const snapshotView& view,
                    std::vector<std::uint8_t>& rgba, std::string& error);

// Writes an 8-bit RGBA image (top row first) as an RGB PNG; false, with the file removed and a
// reason in `error`, when it cannot be written.
bool writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& rgba,
              std::string& error);

}  // namespace JEVMESH
