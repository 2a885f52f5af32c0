// The page as a page: for people without a mouse, for those who don't see it, and for slow networks.

import assert from "node:assert/strict";
import test from "node:test";
import { sitDown } from "./support/sitting.js";

const heaviest = 120_000; // bytes, without photos and icons

/// The names that the browser tells assistive technology for everything that can have the keyboard.
async function focusable(page) {
    const session = await page.context().newCDPSession(page);
    const { nodes } = await session.send("Accessibility.getFullAXTree");
    await session.detach();
    const isSet = (node, name) => node.properties?.some((each) => each.name === name && each.value.value === true);
    return nodes.filter((node) => !node.ignored && isSet(node, "focusable") && !/Web|document/.test(node.role.value));
}

/// Goes through the page by the Tab key, from its beginning, and through rows of buttons by the arrow keys: what had the
/// keyboard and how that is seen.
async function tabThrough(page) {
    await page.evaluate(() => {
        globalThis.tabbedTo = new Set([document.body]);
        document.body.tabIndex = -1;
        document.body.focus();
        document.body.removeAttribute("tabindex");
    });
    const steps = [];
    const press = async (key) => {
        await page.keyboard.press(key);
        const step = await page.evaluate(() => {
            const element = document.activeElement;
            const style = getComputedStyle(element);
            const isNew = !globalThis.tabbedTo.has(element);
            globalThis.tabbedTo.add(element);
            const isInRow = Boolean(element.closest("[role=toolbar]"));
            return { isNew, isInRow, html: element.outerHTML.slice(0, 160), outline: `${style.outlineStyle} ${style.outlineWidth}` };
        });
        if (step.isNew) {
            steps.push(step);
        }
        return step;
    };
    for (;;) {
        const { isNew, isInRow } = await press("Tab");
        if (!isNew) {
            return steps;
        }
        while (isInRow && (await press("ArrowRight")).isNew) {
            // The row ends where it began.
        }
    }
}

/// Every control has a name, is reached by keyboard, and shows when it has the keyboard.
async function checkControls(page, least) {
    const named = await focusable(page);
    assert.deepEqual(named.filter((node) => !node.name?.value).map((node) => node.role.value), [], "controls without name");
    const steps = await tabThrough(page);
    assert.deepEqual(steps.filter((step) => /none|auto 0px| 0px/.test(step.outline)), [], "focus that can't be seen");
    const missed = await page.evaluate(() =>
        [...document.querySelectorAll("button, input, select, [tabindex='0']")]
            .filter((element) => element.checkVisibility({ visibilityProperty: true }) && !element.disabled)
            .filter((element) => !globalThis.tabbedTo.has(element))
            .map((element) => element.outerHTML.slice(0, 160)),
    );
    assert.deepEqual(missed, [], "controls that the keyboard misses");
    assert.ok(steps.length >= least, `${steps.length} controls`);
}

test("every control has a name, and the keyboard reaches it visibly", async (t) => {
    const desk = await sitDown(t);
    await desk.phone.getByText("Disarmed").waitFor();
    await checkControls(desk.page, 30);
    await desk.haveAnAlert();
    const list = await desk.open("Alert List", "Alert List");
    await list.getByRole("option").click();
    await list.getByRole("img", { name: "Photo of the alert" }).waitFor();
    await desk.open("Settings", "Sentrel");
    await checkControls(desk.page, 50);
});

test("a Mac is armed and its alarm stopped without a mouse", async (t) => {
    const desk = await sitDown(t);
    const { keyboard } = desk.page;
    await desk.tabTo(desk.menuItem);
    await keyboard.press("ArrowDown");
    await desk.menu.locator("input:focus").waitFor();
    await keyboard.press("Space");
    await desk.isArmed();
    await keyboard.press("Escape");
    await desk.menu.waitFor({ state: "hidden" });
    await desk.screen.locator(".menu-item:focus").waitFor();
    await desk.arrowTo("Unplugged", "Charger");
    await keyboard.press("Enter");
    await desk.tells("→ The alarm sounds through MacBook Pro Speakers at 83 %.");
    await desk.tabTo(desk.menuItem);
    await keyboard.press("Enter");
    await desk.menu.locator("input:focus").waitFor();
    const stop = desk.button("Stop Alarm", desk.menu);
    for (let rows = 0; rows < 4 && !(await stop.and(desk.page.locator(":focus")).count()); ++rows) {
        await keyboard.press("ArrowDown");
    }
    await stop.and(desk.page.locator(":focus")).waitFor();
    await keyboard.press("Enter");
    await desk.button("Log in", desk.screen).and(desk.page.locator(":focus")).waitFor();
    await keyboard.press("Enter");
    await stop.waitFor({ state: "detached" });
    const panel = await desk.open("Settings", "Sentrel");
    await panel.and(desk.page.locator(":focus")).waitFor();
    await desk.screen.locator(".menu-name").getByText("Sentrel").waitFor();
    await keyboard.press("Control+w");
    await panel.waitFor({ state: "detached" });
    await desk.screen.locator(".menu-name").getByText("Finder").waitFor();
});

test("the control panel has room for every language", async (t) => {
    const titles = new Set();
    const logIn = { en: "Log in", de: "Anmelden", fr: "S’identifier", es: "Iniciar sesión", ja: "ログイン", "zh-Hans": "登录" };
    for (const [language, answer] of Object.entries(logIn)) {
        const desk = await sitDown(t, { language });
        await desk.page.evaluate(() => fetch("/api/action", { method: "POST", body: JSON.stringify({ open: "main" }) }));
        await desk.logIn(answer);
        const panel = desk.window("Sentrel");
        await panel.waitFor();
        titles.add(await panel.locator("h3").nth(1).innerText());
        const crowded = await panel.evaluate((element) => {
            const slider = (each) => [each.firstElementChild, each.querySelector("input")].map((part) => part.getBoundingClientRect());
            const overlaps = [...element.querySelectorAll(".ui-slider")].filter((each) => {
                const [label, control] = slider(each);
                return label.right > control.left || control.width < 60;
            });
            const cut = [...element.querySelectorAll("*")].filter((each) => each.scrollWidth > each.clientWidth + 1 && each.clientWidth > 0);
            return [...overlaps, ...cut].map((each) => each.outerHTML.slice(0, 160));
        });
        assert.deepEqual(crowded, [], language);
    }
    assert.equal(titles.size, 6, [...titles].join());
});

test("the page is light, and asks nobody but its server", async (t) => {
    const weights = [];
    const desk = await sitDown(t, {
        watch: (page) => page.on("response", (response) => weights.push(response)),
    });
    await desk.phone.getByText("Disarmed").waitFor();
    const origin = new URL(desk.page.url()).origin;
    let weight = 0;
    for (const response of weights) {
        assert.equal(new URL(response.url()).origin, origin);
        if (/\.(js|css|html)$|\/$/.test(new URL(response.url()).pathname) && response.ok()) {
            weight += (await response.body()).length;
        }
    }
    assert.ok(weight > 10_000 && weight <= heaviest, `${weight} bytes`);
});
