import { h } from "./dom.js";
import { post, report } from "./server.js";

const webcamInterval = 1000; // milliseconds between two pictures

/// The visitor's own webcam in the place of the drawn scene.
export class Webcam {
    #stream = null;
    #timer = 0;

    async start() {
        this.stop(false);
        try {
            this.#stream = await navigator.mediaDevices.getUserMedia({ video: { width: 1280, height: 720 } });
        } catch {
            report("The webcam can't be used: there is none, or the browser does not allow it.");
            return;
        }
        const video = h("video", { muted: true, playsInline: true });
        video.srcObject = this.#stream;
        await video.play();
        const canvas = h("canvas", { width: video.videoWidth, height: video.videoHeight });
        const send = () => {
            canvas.getContext("2d").drawImage(video, 0, 0);
            canvas.toBlob((blob) => blob && post("webcam", blob), "image/jpeg", 0.8);
        };
        send();
        this.#timer = setInterval(send, webcamInterval);
    }

    stop(isLast = true) {
        clearInterval(this.#timer);
        this.#stream?.getTracks().forEach((track) => track.stop());
        this.#stream = null;
        if (isLast) {
            post("webcam", new Blob([], { type: "image/jpeg" }));
        }
    }
}
