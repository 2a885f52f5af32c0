// Facts about the product's views that need no drawing.

/// Whether two values of JSON say the same.
export function isSame(one, other) {
    if (one === other || typeof one !== "object" || typeof other !== "object" || !one || !other) {
        return one === other;
    }
    const names = Object.keys(one);
    return names.length === Object.keys(other).length && names.every((name) => isSame(one[name], other[name]));
}

/// All that a view says.
export const textsOf = (node) => [node.text ?? "", ...(node.children ?? []).map(textsOf)].filter(Boolean).join(", ");

/// The sheets and dialogs of a view, from the one behind to the one in front. Lists have none.
export function oversOf(node) {
    const own = [node.sheet, node.dialog].filter(Boolean);
    const inside = node.kind === "list" ? [] : [...(node.toolbar ?? []), ...(node.children ?? [])];
    return [...inside.flatMap(oversOf), ...own.flatMap((over) => [over, ...oversOf(over)])];
}

/// The buttons of a question as macOS has them: the way out is on the left.
export const cancelFirst = (buttons) =>
    [...buttons].sort((one, other) => (other.role === "cancel") - (one.role === "cancel"));

/// The first words in a view, which are its title.
export const firstText = (node) => (node.kind === "text" ? node.text : (node.children ?? []).map(firstText).find(Boolean));

/// The meaning of a key in a window: the name that the server knows, or none when the page keeps the key.
export function keyOf(event) {
    const isEditing = event.target.matches("input:not([type=checkbox]):not([type=range]), textarea");
    if (event.key === "Escape") {
        return "escape";
    }
    if (isEditing || event.target.closest("button") === event.target) {
        return null;
    }
    return { Delete: "delete", Backspace: "delete", Enter: "return" }[event.key] ?? null;
}
