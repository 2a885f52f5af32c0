#include "simulation/mac/camera/CameraChange.hpp"

namespace sentrel::simulation {

namespace {

using ports::CaptureAuthorization;

void authorize(SimulatedCamera& camera, CaptureAuthorization status)
{
    const bool isAnswer = status == CaptureAuthorization::authorized || status == CaptureAuthorization::denied;
    if (isAnswer) {
        camera.answerPrompt(status == CaptureAuthorization::authorized);
    }
    camera.setAuthorization(status);
}

} // namespace

void apply(const CameraChange& change, SimulatedCamera& camera)
{
    if (change.authorization) {
        authorize(camera, *change.authorization);
    }
    if (change.devices) {
        camera.setDevices(*change.devices);
    }
    if (change.brightness) {
        camera.setBrightness(*change.brightness);
    }
    if (change.share) {
        camera.setPhotoShare(*change.share);
    }
    if (change.photo) {
        camera.setPhotoFile(*change.photo);
    }
    if (change.delay) {
        camera.setPhotoDelay(*change.delay);
    }
    if (change.fails) {
        camera.faults().set("photo", *change.fails ? -1 : 0);
    }
}

} // namespace sentrel::simulation
