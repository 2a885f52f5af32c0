// The application's and the program's own life: quitting, crashing, and a server that goes and comes back.

import assert from "node:assert/strict";
import test from "node:test";
import { fallsSilent, listen } from "./support/ear.js";
import { sitDown } from "./support/sitting.js";

test("nobody quits a sounding Sentrel without the login; launched again, it is disarmed", async (t) => {
    const desk = await sitDown(t);
    await desk.button("Turn sound on").click();
    await desk.haveAnAlert();
    const ended = desk.page.getByText("Sentrel is not running.", { exact: true });
    const quit = desk.button("Quit", await desk.openMenu());
    await quit.click();
    await desk.logIn("Cancel");
    await desk.tells("the panel is cancelled.");
    assert.equal(await ended.isVisible(), false);
    assert.ok((await listen(desk.page)).loudness > 0.1);

    await desk.button("Quit", await desk.openMenu()).click();
    await desk.logIn();
    await ended.waitFor();
    await desk.menuItem.waitFor({ state: "hidden" });
    await fallsSilent(desk.page);

    await desk.button("Open Sentrel", desk.hardware).click();
    await ended.waitFor({ state: "hidden" });
    await desk.isArmed(false);
});

test("a crash is survived: the sound ends, and the next launch brings the speakers back", async (t) => {
    const desk = await sitDown(t);
    await desk.haveAnAlert();
    const use = desk.button("Use Headphones", desk.hardware);
    assert.equal(await use.getAttribute("aria-pressed"), "false");
    await desk.button("Crash Sentrel", desk.hardware).click();
    await desk.button("Open Sentrel", desk.hardware).click();
    await desk.isArmed(false);
    await desk.hardware.locator("[aria-label='Use Headphones'][aria-pressed=true]").waitFor();
});

test("the page finds its server again, and shows what is then", async (t) => {
    const desk = await sitDown(t);
    await desk.haveAnAlert();
    await desk.simulator.end();
    await desk.page.getByText("Connecting again…").waitFor();
    await desk.button("Plugged in", desk.hardware).click();
    const problem = desk.page.getByRole("alert").getByText("The simulated MacBook does not answer.");
    await problem.waitFor();
    const [above, below] = [await problem.boundingBox(), await desk.page.getByText("Connecting again…").boundingBox()];
    assert.ok(above.y + above.height <= below.y, "one message does not lie over the other");
    await desk.simulator.launch();
    await desk.page.getByText("Connecting again…").waitFor({ state: "hidden" });
    await desk.isArmed(false);
    await desk.button("Photo: Unplugged", desk.phone).waitFor();
    const told = desk.story.getByText("The charger is pulled out.");
    assert.equal(await told.count(), 0, "the story is the new run's");
    await desk.button("Unplugged", desk.hardware).click();
    await told.waitFor();
    assert.ok(desk.complaints.splice(0).every((text) => /Failed to load resource/.test(text)));
});

test("the page of an earlier run says what to do", async (t) => {
    const desk = await sitDown(t);
    await desk.simulator.end();
    await desk.simulator.launch("another-token-for-this-run");
    await desk.page.getByRole("status").getByText("Open the address that the program has printed").waitFor();
    await desk.page.goto(desk.simulator.address);
    await desk.menuItem.waitFor();
    desk.complaints.splice(0);
});
