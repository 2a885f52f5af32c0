// Where each test begins: a simulated MacBook of its own, and its page in the browser.

import assert from "node:assert/strict";
import { after } from "node:test";
import { closeBrowser, newContext } from "./browser.js";
import { Desk } from "./desk.js";
import { Simulator } from "./simulator.js";

after(closeBrowser);

/// Starts a simulator and opens its page. At the test's end both go, and what the pages complained of fails the test.
export async function sitDown(test, options = {}) {
    const simulator = await Simulator.start(options);
    const desks = [];
    test.after(async () => {
        await Promise.all(desks.map((desk) => desk.page.context().close()));
        await simulator.close();
        assert.deepEqual(desks.flatMap((desk) => desk.complaints), [], "the page complained");
    });
    return openPage({ simulator, desks }, options.browser, options.watch);
}

/// One more page of the same MacBook; `watch(page)` sees it before it opens.
export async function openPage({ simulator, desks }, browser = {}, watch = () => {}) {
    const page = await (await newContext(browser)).newPage();
    const desk = new Desk(simulator, page, desks);
    page.on("pageerror", (error) => desk.complaints.push(String(error)));
    page.on("console", (message) => message.type() === "error" && desk.complaints.push(message.text()));
    desks.push(desk);
    watch(page);
    await page.goto(simulator.address);
    await desk.menuItem.waitFor();
    return desk;
}
