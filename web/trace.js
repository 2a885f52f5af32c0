// The accelerometer's last seconds as a line, with the threshold that sets off the alarm.

import { h } from "./dom.js";

const seconds = 5;
const smallestScale = 0.2; // g from rest at the top edge

export class Trace {
    #points = [];
    #threshold = null;
    #clock = 0;
    #isDrawing = false;

    constructor(stream) {
        this.canvas = h("canvas", { className: "trace", role: "img", ariaLabel: "Motion of the last five seconds" });
        this.reading = h("span", { className: "trace-reading" }, "at rest");
        this.element = h("div", { className: "trace-box" }, this.canvas, this.reading);
        stream.on("motion", (motion) => this.#take(motion));
        stream.on("hardware", (hardware) => {
            this.#threshold = hardware.threshold;
            this.#draw();
        });
        new ResizeObserver(() => this.#draw()).observe(this.canvas);
        matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.#draw());
    }

    #take({ at, departures, rate }) {
        departures.forEach((value, index) => {
            this.#points.push({ time: at - (departures.length - 1 - index) / rate, value });
        });
        this.#clock = at;
        this.#points = this.#points.filter((point) => point.time > at - seconds);
        const latest = this.#points.at(-1)?.value ?? 0;
        this.reading.textContent = latest < 0.01 ? "at rest" : `${latest.toFixed(2)} g`;
        if (!this.#isDrawing) {
            this.#isDrawing = true;
            requestAnimationFrame(() => {
                this.#isDrawing = false;
                this.#draw();
            });
        }
    }

    #draw() {
        const { clientWidth: width, clientHeight: height } = this.canvas;
        if (width === 0) {
            return;
        }
        const scale = devicePixelRatio;
        if (this.canvas.width !== Math.round(width * scale)) {
            this.canvas.width = Math.round(width * scale);
            this.canvas.height = Math.round(height * scale);
        }
        const context = this.canvas.getContext("2d");
        const style = getComputedStyle(this.canvas);
        const fullScale = Math.max(1.4 * (this.#threshold ?? 0), smallestScale);
        const y = (value) => height - 4 - Math.min(value / fullScale, 1) * (height - 8);
        context.setTransform(scale, 0, 0, scale, 0, 0);
        context.clearRect(0, 0, width, height);
        if (this.#threshold !== null && this.#threshold !== undefined) {
            context.strokeStyle = style.getPropertyValue("--alarm");
            context.setLineDash([4, 4]);
            context.beginPath();
            context.moveTo(0, y(this.#threshold));
            context.lineTo(width, y(this.#threshold));
            context.stroke();
            context.setLineDash([]);
            context.fillStyle = style.getPropertyValue("--alarm");
            context.font = "11px system-ui, sans-serif";
            context.fillText(`alarm beyond ${this.#threshold.toFixed(2)} g`, 6, y(this.#threshold) + 13);
        }
        context.strokeStyle = style.getPropertyValue("--accent");
        context.lineWidth = 1.5;
        context.beginPath();
        for (const point of this.#points) {
            context.lineTo(width * (1 - (this.#clock - point.time) / seconds), y(point.value));
        }
        context.stroke();
    }
}
