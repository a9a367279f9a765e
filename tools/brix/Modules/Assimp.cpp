// The part of the program that reads scenes with assimp. A library of its own, as the program would start 5 ms later with it.
#include "SceneModule.h"

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Matrix = aiMatrix4x4t<double>;

Matrix InDouble(const aiMatrix4x4& m)
{
    const auto wide = [](ai_real number) { return static_cast<double>(number); };
    return {wide(m.a1), wide(m.a2), wide(m.a3), wide(m.a4), wide(m.b1), wide(m.b2), wide(m.b3), wide(m.b4),
            wide(m.c1), wide(m.c2), wide(m.c3), wide(m.c4), wide(m.d1), wide(m.d2), wide(m.d3), wide(m.d4)};
}

// A mirrored mesh is inside out: its triangles turn the other way, so that they face outwards again.
bool PassOn(const aiMesh& mesh, const Matrix& toWorld, BrixTakeTriangle take, void* context)
{
    const bool isMirrored = toWorld.Determinant() < 0;
    for (const aiFace* face = mesh.mFaces; face != mesh.mFaces + mesh.mNumFaces; ++face) {
        if (face->mNumIndices != 3) continue; // a point or a line
        double corners[9];
        for (unsigned corner = 0; corner < 3; ++corner) {
            const unsigned vertex = face->mIndices[isMirrored ? 2 - corner : corner];
            if (vertex >= mesh.mNumVertices) return true; // of a damaged file
            const aiVector3D& place = mesh.mVertices[vertex];
            const aiVector3t<double> world =
                toWorld *
                aiVector3t<double>(static_cast<double>(place.x), static_cast<double>(place.y), static_cast<double>(place.z));
            corners[3 * corner] = world.x;
            corners[3 * corner + 1] = world.y;
            corners[3 * corner + 2] = world.z;
        }
        if (take(context, corners) == 0) return false;
    }
    return true;
}

void PassOn(const aiScene& scene, BrixTakeTriangle take, void* context)
{
    std::vector<std::pair<const aiNode*, Matrix>> waiting{{scene.mRootNode, InDouble(scene.mRootNode->mTransformation)}};
    while (!waiting.empty()) {
        const auto [node, toWorld] = waiting.back();
        waiting.pop_back();
        for (unsigned i = 0; i < node->mNumMeshes; ++i)
            if (!PassOn(*scene.mMeshes[node->mMeshes[i]], toWorld, take, context)) return;
        for (unsigned i = node->mNumChildren; i-- > 0;)
            waiting.emplace_back(node->mChildren[i], toWorld * InDouble(node->mChildren[i]->mTransformation));
    }
}

void Read(const char* filePath, BrixTakeTriangle take, void* context)
{
    Assimp::Importer importer;
    // Places are all that is wanted.
    importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS, aiComponent_NORMALS | aiComponent_TANGENTS_AND_BITANGENTS |
                                                            aiComponent_COLORS | aiComponent_TEXCOORDS | aiComponent_BONEWEIGHTS |
                                                            aiComponent_ANIMATIONS | aiComponent_TEXTURES | aiComponent_LIGHTS |
                                                            aiComponent_CAMERAS | aiComponent_MATERIALS);
    const aiScene* const scene = importer.ReadFile(filePath, aiProcess_Triangulate | aiProcess_RemoveComponent);
    if (scene == nullptr || scene->mRootNode == nullptr) throw std::runtime_error(importer.GetErrorString());
    PassOn(*scene, take, context);
}

} // namespace

extern "C" {

const char* brix_module_version(void) { return BRIX_VERSION; }

int brix_read_scene(const char* filePath, BrixTakeTriangle take, void* context, char* reason, std::size_t reasonSize)
{
    const auto fail = [&](const char* text) {
        std::strncpy(reason, text, reasonSize - 1);
        reason[reasonSize - 1] = '\0';
        return 1;
    };
    try {
        Read(filePath, take, context);
        return 0;
    } catch (const std::exception& error) {
        return fail(error.what());
    } catch (...) {
        return fail("unknown error");
    }
}
}
