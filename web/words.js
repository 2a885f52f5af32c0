// The words of the phone and of the system's panels. Those of the product come from the server.

const english = {
    alerts: "Alerts",
    noAlerts: "No alerts",
    notifications: "Notifications",
    noMacs: "No Mac has been seen in this account.",
    armed: "Armed",
    disarmed: "Disarmed",
    arm: "Arm",
    disarm: "Disarm",
    byPhone: "{action} {mac} from the phone",
    seen: "seen {ago}",
    on: "{what} on {mac}",
    photo: "Photo: {what}",
    closePhoto: "Close photo",
    cancel: "Cancel",
    wrong: "Wrong password",
    logIn: "Log in",
    ok: "OK",
    save: "Save",
    close: "Close",
    trying: "Sentrel is trying to {reason}.",
    how: "Touch ID or enter the password of this Mac's user.",
    place: "In “{folder}”",
    fileName: "File name",
    photoTitle: "Photo of the alert",
};

/// The words of a language: `words(name, {values})`. Other languages than English are fetched when they are wanted.
export async function wordsIn(language) {
    const others = language.startsWith("en") ? {} : (await import("./languages.js")).tableFor(language);
    const table = { ...english, ...others };
    return (name, values = {}) => table[name].replace(/\{(\w+)\}/g, (_, key) => values[key]);
}

const units = [["second", 1, 90], ["minute", 60, 5400], ["hour", 3600, Infinity]];
const justNow = 10; // seconds

/// How long ago, in the words of a language.
export function ago(seconds, language) {
    const format = new Intl.RelativeTimeFormat(language, { numeric: "auto", style: "short" });
    const [unit, length] = units.find(([, , end]) => seconds < end);
    return format.format(seconds < justNow ? 0 : -Math.round(seconds / length), unit);
}
