// Listens to what the page plays.

import assert from "node:assert/strict";

/// Listens for so many seconds of the page's own audio time: how loud it gets, and at which frequency it is loudest.
export function listen(page, seconds = 1) {
    return page.evaluate(async (length) => {
        const output = globalThis.sentrelSound.output;
        const analyser = new AnalyserNode(output.context, { fftSize: 8192, smoothingTimeConstant: 0 });
        output.connect(analyser);
        const samples = new Float32Array(analyser.fftSize);
        const levels = new Float32Array(analyser.frequencyBinCount);
        const heard = { loudness: 0, frequency: 0 };
        // Earlier sound must have left the analyser.
        const start = output.context.currentTime + analyser.fftSize / output.context.sampleRate;
        while (output.context.currentTime < start + length) {
            await new Promise(requestAnimationFrame);
            if (output.context.currentTime < start) {
                continue;
            }
            analyser.getFloatTimeDomainData(samples);
            const loudness = Math.sqrt(samples.reduce((sum, sample) => sum + sample * sample, 0) / samples.length);
            if (loudness > heard.loudness) {
                analyser.getFloatFrequencyData(levels);
                const bin = levels.indexOf(Math.max(...levels));
                heard.loudness = loudness;
                heard.frequency = (bin * output.context.sampleRate) / analyser.fftSize;
            }
        }
        analyser.disconnect();
        output.disconnect(analyser);
        return heard;
    }, seconds);
}

/// Waits until nothing has been heard for a second.
export async function fallsSilent(page) {
    const until = Date.now() + 10_000;
    while ((await listen(page)).loudness > 1e-4) {
        assert.ok(Date.now() < until, "it does not become silent");
    }
}
