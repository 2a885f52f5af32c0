// The passcode and the lock screen.

import assert from "node:assert/strict";
import test from "node:test";
import { sitDown } from "./support/sitting.js";

/// Types where the keyboard goes by itself.
async function type(desk, passcode) {
    await desk.screen.locator("[aria-label='Passcode']:focus").waitFor();
    await desk.page.keyboard.type(passcode);
}

async function guess(desk, passcode) {
    await type(desk, passcode);
    await desk.page.keyboard.press("Enter");
}

/// Guesses, each time when the answer to the last guess is there.
async function wrongly(desk, passcodes) {
    for (const [index, passcode] of passcodes.entries()) {
        await guess(desk, passcode);
        await desk.story.getByText("The passcode is wrong").nth(index).waitFor();
    }
}

test("a passcode is set in the control panel; guessing it sounds the alarm, and it opens every display", async (t) => {
    const desk = await sitDown(t);
    const panel = await desk.open("Settings", "Sentrel");
    await desk.button("Set Passcode", panel).click();
    const sheet = panel.getByRole("dialog");
    await type(desk, "2468");
    // Before anything that would scroll it into view.
    const [inner, outer] = [await sheet.boundingBox(), await panel.boundingBox()];
    assert.ok(inner.y >= outer.y && inner.y + inner.height <= outer.y + outer.height, "the sheet lies in its window");
    await sheet.getByLabel("Confirm passcode").fill("2469");
    await desk.button("Save", sheet).click();
    await sheet.getByText("Passcodes don't match.").waitFor();
    await sheet.getByLabel("Confirm passcode").fill("2468");
    await desk.page.keyboard.press("Enter");
    await panel.getByText("Unlock passcode set", { exact: true }).waitFor();
    await panel.getByRole("checkbox", { name: "Lock screen when arming" }).click();
    await panel.getByRole("checkbox", { name: "On failed unlock" }).click();
    await desk.button("Close window", panel).click();
    await panel.waitFor({ state: "detached" });

    await desk.button("2", desk.hardware).click();
    await desk.arm();
    const covers = desk.screen.getByRole("dialog", { name: /^Lock screen of display/ });
    await covers.nth(1).waitFor();
    await covers.first().getByText("This Mac is locked. Enter your passcode to unlock.").waitFor();
    await wrongly(desk, ["1357", "0000", "24680"]);
    await covers.getByText("Incorrect passcode. The alarm has been triggered.").waitFor();
    await desk.tells("→ The alarm sounds through MacBook Pro Speakers at 83 %.");
    await guess(desk, "2468");
    await covers.first().waitFor({ state: "detached" });
    await desk.isArmed();
});

test("too many wrong passcodes lock the field, and it counts down", async (t) => {
    const desk = await sitDown(t, { scenario: "wrong-passcodes" });
    await desk.arm();
    await wrongly(desk, ["0000", "1234", "1111", "4321"]);
    await guess(desk, "7390");
    const cover = desk.screen.getByRole("dialog", { name: "Lock screen of display 1" });
    const notice = cover.getByText(/^Too many attempts\. Try again in \d+ seconds\.$/);
    const told = Number((await notice.innerText()).match(/\d+/)[0]);
    assert.ok(told > 15 && told <= 30, `${told} seconds`);
    await guess(desk, "7391");
    await cover.getByText(`Too many attempts. Try again in ${told - 3} seconds.`).waitFor();
});
