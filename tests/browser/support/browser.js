// The browser: one for each test file, with a context of its own for each page that is opened.

import { accessSync, constants } from "node:fs";
import path from "node:path";
import { chromium } from "playwright-core";

/// Debian's name first; a browser that a package manager of another kind brought comes after it.
function executable() {
    const names = ["chromium", "chromium-browser", "google-chrome"];
    const folders = ["/usr/bin", ...(process.env.PATH ?? "").split(":")];
    for (const file of names.flatMap((name) => folders.map((folder) => path.join(folder, name)))) {
        try {
            accessSync(file, constants.X_OK);
            return file;
        } catch {
            // not here
        }
    }
    throw new Error("there is no Chromium here");
}

const quiet = [
    "--no-sandbox",
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--use-fake-device-for-media-stream", // a webcam that shows a green picture with a moving disc
];

let browser;

/// Its visitor has been on the page before, unless told otherwise.
export async function newContext({ isFirstVisit = false, ...options } = {}) {
    browser ??= chromium.launch({ executablePath: executable(), args: quiet, headless: true });
    const context = await (await browser).newContext({ viewport: { width: 1280, height: 800 }, ...options });
    context.setDefaultTimeout(15_000);
    if (!isFirstVisit) {
        await context.addInitScript(() => localStorage.setItem("sentrel-guide", "done"));
    }
    return context;
}

export async function closeBrowser() {
    await (await browser)?.close();
    browser = undefined;
}
