// The window of all alerts: looking at them, keeping a photo, deleting.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import path from "node:path";
import test from "node:test";
import { fillWithAlerts } from "./support/alerts.js";
import { coloursOf, differenceOf } from "./support/desk.js";
import { sitDown } from "./support/sitting.js";

test("an alert is looked at, its photo previewed and saved, and then it is deleted everywhere", async (t) => {
    const desk = await sitDown(t);
    await desk.haveAnAlert();
    const window = await desk.open("Alert List", "Alert List");
    await window.getByRole("option", { name: "Power Unplugged" }).click();
    const photo = window.getByRole("img", { name: "Photo of the alert" });
    assert.ok((await coloursOf(photo)) > 100, "the photo shows something");

    await desk.button("Preview", window).click();
    const preview = desk.screen.getByRole("dialog").filter({ has: desk.button("Close") });
    assert.ok((await coloursOf(preview.getByRole("img"))) > 100);
    await desk.page.keyboard.press("Escape");
    await preview.waitFor({ state: "detached" });

    await desk.button("Download Photo", window).click();
    const name = desk.screen.getByRole("textbox", { name: "File name" });
    await name.and(desk.page.locator(":focus")).waitFor();
    await desk.page.keyboard.press("Escape");
    await name.waitFor({ state: "detached" });
    await desk.button("Download Photo", window).click();
    await name.fill("../Evidence of the café.jpg"); // never leads out of the folder
    await desk.page.keyboard.press("Enter");
    await name.waitFor({ state: "detached" });
    const saved = await readFile(path.join(desk.simulator.disk, "Downloads/Evidence of the café.jpg"));
    assert.ok((await differenceOf(photo, saved)) < 4, "the file is the photo");

    await window.getByRole("option").click();
    await desk.page.keyboard.press("Delete");
    const question = window.getByRole("alertdialog");
    await question.getByText("This alert will be permanently removed.").waitFor();
    assert.deepEqual(await question.getByRole("button").allInnerTexts(), ["Cancel", "Delete"]);
    await desk.page.keyboard.press("Escape");
    await question.waitFor({ state: "detached" });
    await desk.page.keyboard.press("Delete");
    await desk.button("Cancel", question).and(desk.page.locator(":focus")).waitFor();
    await desk.page.keyboard.press("Enter");
    await question.waitFor({ state: "detached" });
    await desk.page.keyboard.press("Delete");
    await desk.button("Delete", question).click();
    await window.getByText("No Alerts Yet").waitFor();
    await desk.phone.getByText("No alerts").waitFor();
});

test("a thousand alerts are scrolled, chosen by keyboard, and deleted in one go", async (t) => {
    const desk = await sitDown(t, { scenario: "control-panel", prepare: (disk) => fillWithAlerts(disk, 1000) });
    const window = await desk.open("Alert List", "Alert List");
    const rows = window.getByRole("option");
    assert.equal(await rows.count(), 1000);
    await window.getByRole("option", { name: "Saved on this Mac only" }).nth(999).waitFor({ state: "attached" });
    await rows.nth(999).scrollIntoViewIfNeeded();
    await rows.nth(999).getByText("Saved on this Mac only").waitFor();
    const selected = window.locator("[role=option][aria-selected=true]");
    await rows.first().click();
    await selected.and(rows.first()).waitFor();
    await desk.page.keyboard.press("ArrowDown");
    await selected.and(rows.nth(1)).waitFor();
    await desk.page.keyboard.press("Control+a");
    await window.getByText(/^1,?000 Alerts Selected$/).waitFor();
    await desk.page.keyboard.press("Delete");
    await desk.button("Delete", window.getByRole("alertdialog")).click();
    await window.getByText("No Alerts Yet").waitFor();
});
