// The page for everybody: checked by rules in every state, on small screens, enlarged, and for people who don't hear.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import test from "node:test";
import { sitDown } from "./support/sitting.js";

const axe = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

/// Returns the violations of the rules on the page as it is now, in light and in dark.
async function violations(page) {
    if (!(await page.evaluate(() => "axe" in globalThis))) {
        await page.evaluate(axe);
    }
    const found = [];
    for (const colorScheme of ["light", "dark"]) {
        await page.emulateMedia({ colorScheme, reducedMotion: "reduce" });
        const { violations } = await page.evaluate(() => globalThis.axe.run());
        const told = violations.flatMap(({ id, nodes }) => nodes.map((node) => `${colorScheme} ${id} ${node.target}: ${node.html.slice(0, 160)}`));
        found.push(...told);
    }
    return found;
}

test("no state of the page breaks a rule of accessibility", { timeout: 240_000 }, async (t) => {
    const desk = await sitDown(t, { browser: { isFirstVisit: true } });
    const { page } = desk;
    const check = async (state) => assert.deepEqual(await violations(page), [], state);
    await desk.phone.getByText("Disarmed").waitFor();
    await check("the first visit");
    await desk.button("Skip").click();
    await desk.openMenu();
    await check("the menu");
    await desk.haveAnAlert();
    await check("the alarm");
    await page.setViewportSize({ width: 390, height: 844 });
    await check("the alarm on a small screen");
    await page.setViewportSize({ width: 1280, height: 800 });
    await desk.button("Photo: Unplugged", desk.phone).click();
    await check("the phone's photo");
    await page.keyboard.press("Escape");
    await desk.button("Stop Alarm", await desk.openMenu()).click();
    await desk.button("Log in", desk.screen).waitFor();
    await check("the login");
    await desk.logIn();
    const list = await desk.open("Alert List", "Alert List");
    await list.getByRole("option").click();
    await list.getByRole("img", { name: "Photo of the alert" }).waitFor();
    await check("the list of alerts");
    await page.keyboard.press("Delete");
    await list.getByRole("alertdialog").waitFor();
    await check("the question before deleting");
    await page.keyboard.press("Escape");
    await desk.button("Preview", list).click();
    await desk.button("Close", desk.screen).waitFor();
    await check("the preview");
    await page.keyboard.press("Escape");
    await desk.button("Download Photo", list).click();
    await desk.screen.getByRole("textbox", { name: "File name" }).waitFor();
    await check("the save panel");
    await page.keyboard.press("Escape");
    await desk.button("Close window", list).click();
    const panel = await desk.open("Settings", "Sentrel");
    await check("the settings");
    await desk.button("Set Passcode", panel).click();
    await panel.getByRole("dialog").waitFor();
    await check("the passcode's sheet");
    await page.keyboard.press("Escape");
    await panel.getByRole("dialog").waitFor({ state: "detached" });
    await desk.button("Closed", desk.hardware).click();
    await desk.screen.getByText("The lid is closed.").waitFor();
    await check("the closed lid");
});

test("the lock screen breaks no rule of accessibility", async (t) => {
    const desk = await sitDown(t, { scenario: "wrong-passcodes" });
    await desk.arm();
    await desk.screen.getByRole("dialog", { name: "Lock screen of display 1" }).waitFor();
    assert.deepEqual(await violations(desk.page), []);
});

test("nothing is wider than a small screen, or than one enlarged to 200 %", async (t) => {
    const desk = await sitDown(t);
    await desk.haveAnAlert();
    await desk.open("Settings", "Sentrel");
    for (const [width, height] of [[320, 640], [390, 844], [640, 400]]) {
        await desk.page.setViewportSize({ width, height });
        const wide = await desk.page.evaluate(() => {
            const isScrolled = document.scrollingElement.scrollWidth > innerWidth;
            const all = [...document.querySelectorAll("body *")].filter((each) => each.getBoundingClientRect().right > innerWidth + 1);
            return isScrolled ? all.map((each) => each.outerHTML.slice(0, 120)) : [];
        });
        assert.deepEqual(wide, [], `${width} pixels`);
    }
});

test("the alarm is seen: on the Mac, on the phone, in the tab, and on a small screen", async (t) => {
    const desk = await sitDown(t, { browser: { viewport: { width: 390, height: 844 }, reducedMotion: "reduce" } });
    const { page } = desk;
    const told = page.locator("#alarm-told");
    const bar = page.getByRole("navigation", { name: "Alarm" });
    assert.equal(await bar.isVisible(), false);
    await desk.haveAnAlert();
    await told.getByText("The alarm sounds.").waitFor();
    assert.match(await page.title(), /ALARM/);
    await page.getByText("ALARM · MacBook Pro Speakers at 83 %").waitFor();
    await page.locator(".glow").waitFor();
    await desk.phone.getByRole("status").getByText("Unplugged on Maya's MacBook Pro").waitFor();
    await page.reload();
    await desk.phone.getByRole("status").getByText("Unplugged on Maya's MacBook Pro").waitFor();
    await page.evaluate(() => scrollTo(0, document.body.scrollHeight));
    await bar.getByText("Unplugged on Maya's MacBook Pro").waitFor();
    await bar.getByRole("link", { name: "Phone" }).click();
    const { y } = await desk.button("Photo: Unplugged", desk.phone).boundingBox();
    assert.ok(y > 0 && y < 844, "the photo is in view");
    await desk.button("Stop Alarm", await desk.openMenu()).click();
    await desk.logIn();
    await told.getByText("The alarm has stopped.").waitFor();
    assert.doesNotMatch(await page.title(), /ALARM/);
    assert.equal(await bar.isVisible(), false);
});

test("nothing jumps when an alert arrives", async (t) => {
    const desk = await sitDown(t);
    await desk.arm();
    const shifts = await desk.page.evaluate(async () => {
        const seen = [];
        new PerformanceObserver((list) => seen.push(...list.getEntries())).observe({ type: "layout-shift" });
        await fetch("/api/action", { method: "POST", body: '"unplug"' });
        const until = performance.now() + 10_000;
        while (!document.querySelector(".phone-alerts img") && performance.now() < until) {
            await new Promise((done) => setTimeout(done, 100));
        }
        await new Promise((done) => setTimeout(done, 500));
        return seen.map(({ value, sources }) => [value, sources.map(({ node }) => node?.outerHTML?.slice(0, 80))]);
    });
    await desk.button("Photo: Unplugged", desk.phone).waitFor();
    const sum = shifts.reduce((all, [value]) => all + value, 0);
    assert.ok(sum < 0.01, JSON.stringify(shifts));
});

test("the phone speaks its owner's language, and clocks have her country's hours", async (t) => {
    const desk = await sitDown(t, { language: "de_DE" });
    await desk.phone.getByText("Keine Alarme").waitFor();
    assert.equal(await desk.phone.getAttribute("lang"), "de-DE");
    assert.doesNotMatch(await desk.screen.locator(".menu-clock").innerText(), /AM|PM/);
    await desk.button("Scharf schalten: Maya's MacBook Pro, vom iPhone aus").click();
    await desk.phone.getByText("Scharf", { exact: true }).waitFor();
    await desk.button("Unplugged", desk.hardware).click();
    await desk.phone.getByRole("status").getByText("Getrennt: Maya's MacBook Pro").waitFor();
});
