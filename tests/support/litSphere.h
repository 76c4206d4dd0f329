#pragma once

// The scene the editable-node pixel tests draw: a unit sphere node at half size in the
// middle of the window under one white light from the viewer's side (the identity camera
// looks along +z, so the z < 0 half faces the viewer).
#include "jev3d/editing/editMeshNode.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "support/meshes.h"

namespace testDisplay {

struct litSphere {
  void setUpLitSphere(JEV::RENDERING::renderGL& gl) {
    using namespace JEV::RENDERING::RENDERSTATE;
    // The device's copy of colour material starts as "ambient and diffuse" while GL
    // starts with it off, so the node's state would never be sent: make them agree.
    colorMaterialstate off(colorMaterialstate::COLOR_MATERIAL_OFF,
                           colorMaterialstate::FACE_FRONT_AND_BACK);
    gl.setColorMaterialState(off);
    testMeshes::makeSphere(node.getEditMesh(), 16, 24);
    testMeshes::finishMesh(node.getEditMesh());
    node.setTransformMatrix(JEV::MATH::matrix4<float>::getScale(0.5f, 0.5f, 0.5f));
    light.enable = true;
    // Dim enough that no channel saturates, so that colours stay apart.
    light.ambient = JEV::CORE::color(20, 20, 20, 255);
    light.diffuse = JEV::CORE::color(110, 110, 110, 255);
    light.specular = JEV::CORE::color(0, 0, 0, 255);
    light.direction = JEV::MATH::point3<float>(0.f, 0.f, 1.f);
    node.connect(&light, false);
  }
  void tearDownLitSphere() {
    node.disconnect(&light);
    node.discard();
  }

  JEV::RENDERING::RENDERSTATE::lightstate light;
  JEV::MESH::EDITING::editMeshNode node;
};

}  // namespace testDisplay
