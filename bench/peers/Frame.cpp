#include <GL/glew.h>

#include "Context.h"
#include "Environment.h"
#include "FrozenScene.h"
#include "Painter.h"
#include "Peers.h"
#include "ReadyBody.h"
#include "Texture.h"

#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LineWidth>
#include <osg/MatrixTransform>
#include <osg/Texture2D>
#include <osgViewer/Viewer>

namespace {

osg::ref_ptr<osg::StateSet> newState(const Texture* texture, GLenum format)
{
    osg::ref_ptr<osg::StateSet> state = new osg::StateSet;
    if (texture == nullptr) {
        return state;
    }
    BasicImage* pixels = const_cast<Texture*>(texture)->getSource();
    osg::ref_ptr<osg::Image> image = new osg::Image;
    image->setImage(pixels->getWidth(), pixels->getHeight(), 1, pixels->getComponents(), format,
                    GL_UNSIGNED_BYTE, pixels->getPixelBuffer(), osg::Image::NO_DELETE);
    osg::ref_ptr<osg::Texture2D> map = new osg::Texture2D(image);
    map->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR);
    map->setFilter(osg::Texture::MAG_FILTER, osg::Texture::LINEAR);
    map->setResizeNonPowerOfTwoHint(false);
    state->setTextureAttributeAndModes(0, map);
    return state;
}

void blend(osg::StateSet& state)
{
    state.setAttributeAndModes(
        new osg::BlendFunc(osg::BlendFunc::SRC_ALPHA, osg::BlendFunc::ONE_MINUS_SRC_ALPHA));
}

osg::ref_ptr<osg::Geometry> newGeometry(GLenum mode, osg::Vec3Array* points,
                                        osg::Vec2Array* coordinates, const osg::Vec4& color)
{
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(points);
    if (coordinates != nullptr) {
        geometry->setTexCoordArray(0, coordinates);
    }
    osg::ref_ptr<osg::Vec4Array> colors = new osg::Vec4Array(osg::Array::BIND_OVERALL);
    colors->push_back(color);
    geometry->setColorArray(colors);
    geometry->addPrimitiveSet(new osg::DrawArrays(mode, 0, static_cast<GLsizei>(points->size())));
    return geometry;
}

void appendCorners(osg::Vec2Array& coordinates)
{
    for (const osg::Vec2 corner : {osg::Vec2(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
        coordinates.push_back(corner);
    }
}

osg::ref_ptr<osg::Geometry> newSquare(float low, float high, const osg::Vec4& color)
{
    osg::ref_ptr<osg::Vec3Array> points = new osg::Vec3Array;
    for (const osg::Vec3 corner :
         {osg::Vec3(low, low, 0), {high, low, 0}, {high, high, 0}, {low, high, 0}}) {
        points->push_back(corner);
    }
    osg::ref_ptr<osg::Vec2Array> coordinates = new osg::Vec2Array;
    appendCorners(*coordinates);
    return newGeometry(GL_QUADS, points, coordinates, color);
}

osg::ref_ptr<osg::Geometry> newLine(GLenum mode, const std::vector<float>& line,
                                    const osg::Vec4& color)
{
    osg::ref_ptr<osg::Vec3Array> points = new osg::Vec3Array;
    for (std::size_t i = 0; i < line.size(); i += 2) {
        points->push_back({line[i], line[i + 1], 0});
    }
    return newGeometry(mode, points, nullptr, color);
}

/// A frame of the body, its segments put together.
osg::ref_ptr<osg::Geometry> newBody(const bench::ReadyBody::Frame& frame, const osg::Vec4& color)
{
    osg::ref_ptr<osg::Vec3Array> points = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec2Array> coordinates = new osg::Vec2Array;
    for (const auto& segment : frame.segments) {
        const auto add = [&](int i, int j) {
            const float* p = frame.points[i][j];
            points->push_back(osg::Vec3(p[0] * segment.scale.x,
                                        p[1] * segment.scale.y + segment.shift,
                                        p[2] * segment.scale.z) *
                              0.3f);
        };
        for (int i = 1; i < bench::ReadyBody::ROWS; ++i) {
            for (int j = 0; j < bench::ReadyBody::COLUMNS - 1; ++j) {
                add(i, j);
                add(i, j + 1);
                add(i - 1, j + 1);
                add(i - 1, j);
                appendCorners(*coordinates);
            }
        }
    }
    return newGeometry(GL_QUADS, points, coordinates, color);
}

/// A place in the scene. \return where things are put into it
osg::Geode* addPlace(osg::Group& group, const float* matrix)
{
    osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform(osg::Matrixf(matrix));
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    transform->addChild(geode);
    group.addChild(transform);
    return geode;
}

osg::ref_ptr<osg::Group> newScene(const FrozenScene& scene)
{
    const Environment& water = scene.environment();
    osg::ref_ptr<osg::Group> root = new osg::Group;
    osg::StateSet* state = root->getOrCreateStateSet();
    state->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    state->setMode(GL_DEPTH_TEST, osg::StateAttribute::OFF);
    state->setMode(GL_CULL_FACE, osg::StateAttribute::OFF);
    state->setRenderBinDetails(0, "TraversalOrderBin", osg::StateSet::OVERRIDE_RENDERBIN_DETAILS);

    osg::Geode* plane = addPlace(*root, scene.environment().worldmat);
    plane->addDrawable(newSquare(0, 1, {0.5f, 0.5f, 0.5f, 1}));
    plane->setStateSet(newState(water.tex, GL_RGB));

    const osg::Vec4 spriteColor(1, 1, 1, 0.5f);
    const auto fishState = newState(water.fishTex, GL_RGBA);
    blend(*fishState);
    const auto fish = newSquare(-20, 20, spriteColor);
    fish->setStateSet(fishState);
    for (const auto& sprite : scene.fish) {
        addPlace(*root, sprite.matrix)->addDrawable(fish);
    }

    const bench::ReadyBody body = bench::ReadyBody::compute();
    const auto figureState = newState(nullptr, 0);
    blend(*figureState);
    figureState->setAttributeAndModes(new osg::LineWidth(3));
    const osg::Vec4 figureColor(0.5f, 0.5f, 1, 0.5f);
    for (const auto& figure : scene.figures) {
        osg::Geode* place = addPlace(*root, figure.matrix);
        place->setStateSet(figureState);
        place->addDrawable(
            newBody(body.frames[static_cast<std::size_t>(figure.frame)], figureColor));
        for (const auto& tentacle : figure.tentacles) {
            place->addDrawable(newLine(GL_LINE_STRIP, tentacle, figureColor));
        }
    }

    const auto outlineState = newState(nullptr, 0);
    blend(*outlineState);
    const auto bubbleState = newState(water.bubbleTex, GL_RGBA);
    blend(*bubbleState);
    const auto bubble = newSquare(-20, 20, spriteColor);
    bubble->setStateSet(bubbleState);
    for (const auto& place : scene.bubbles) {
        const auto outline = newLine(GL_LINE_LOOP, place.outline, {0.8f, 0.8f, 1, 0.5f});
        outline->setStateSet(outlineState);
        addPlace(*root, place.matrix)->addDrawable(outline);
        addPlace(*root, place.sprite.matrix)->addDrawable(bubble);
    }
    return root;
}

void prepare(osgViewer::Viewer& viewer, const FrozenScene& scene)
{
    viewer.setUpViewerAsEmbeddedInWindow(0, 0, 740, 740);
    viewer.setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    viewer.setLightingMode(osg::View::NO_LIGHT);
    viewer.setSceneData(newScene(scene));
    osg::Camera* camera = viewer.getCamera();
    camera->setClearColor({0.02f, 0.1f, 0.15f, 1});
    camera->setViewport(0, 0, 740, 740);
    camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    camera->setProjectionMatrix(osg::Matrixf(scene.projection));
    camera->setViewMatrix(osg::Matrix::identity());
    viewer.realize();
}

} // namespace

/// The frozen scene as a scene of OpenSceneGraph: a node with a transform for each thing, state
/// shared by what looks alike.
std::vector<Painter> bench::peers::painters(const FrozenScene& scene)
{
    const auto context = bench::makeContext();
    static osgViewer::Viewer viewer; // as the scene's nodes, until the program ends
    prepare(viewer, scene);
    return {{"OpenSceneGraph", context, [] { viewer.frame(); }}};
}
