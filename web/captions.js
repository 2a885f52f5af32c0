// The captions of the theft that plays by itself, in the other languages that the product has, in its order.

import { tableOf } from "./languages.js";

const tables = {
    de: [
        "Maya sitzt im Café. Sie schaltet Sentrel scharf und holt sich einen zweiten Kaffee.",
        "Jemand setzt sich an ihren Tisch …",
        "… und zieht das Netzteil ab.",
        "Der Alarm ertönt, die Kamera hat ein Foto gemacht, und Mayas iPhone zeigt beides.",
        "Köpfe drehen sich um. Der Dieb klappt den Mac zu. Der Alarm geht weiter.",
        "An der Theke hat das iPhone zweimal vibriert. Maya dreht sich um.",
        "Der Dieb klappt den Mac auf und stellt den Ton leiser …",
        "… und Sentrel stellt ihn wieder lauter.",
        "Er schaltet ihn stumm. Sentrel bleibt nicht stumm.",
        "Er lässt los und geht davon. Maya ist zurück und stoppt den Alarm mit ihrer Anmeldung.",
        "Die Musik bleibt angehalten, und die Lautsprecher sind so eingestellt wie vorher.",
    ],
    fr: [
        "Maya est au café. Elle arme Sentrel et va chercher une deuxième tasse.",
        "Quelqu’un s’assied à sa table…",
        "… et débranche le chargeur.",
        "L’alarme retentit, la caméra a pris une photo, et l’iPhone de Maya montre les deux.",
        "Les têtes se tournent. Le voleur referme l’écran d’un coup. L’alarme continue.",
        "Au comptoir, l’iPhone a vibré deux fois. Maya se retourne.",
        "Le voleur rouvre l’écran et baisse le son…",
        "… et Sentrel le remonte.",
        "Il coupe le son. Sentrel ne reste pas muet.",
        "Il lâche le Mac et s’en va. Maya est de retour et arrête l’alarme en s’identifiant.",
        "La musique reste en pause, et les haut-parleurs sont réglés comme avant.",
    ],
    es: [
        "Maya está en un café. Arma Sentrel y va a por una segunda taza.",
        "Alguien se sienta a su mesa…",
        "… y desenchufa el cargador.",
        "Suena la alarma, la cámara ha hecho una foto y el iPhone de Maya muestra ambas cosas.",
        "Todos se giran. El ladrón cierra la tapa de golpe. La alarma sigue.",
        "En la barra, el iPhone ha vibrado dos veces. Maya se da la vuelta.",
        "El ladrón abre la tapa y baja el volumen…",
        "… y Sentrel vuelve a subirlo.",
        "Lo silencia. Sentrel no se queda en silencio.",
        "Suelta el Mac y se marcha. Maya ha vuelto y detiene la alarma con su inicio de sesión.",
        "La música sigue en pausa y los altavoces están como antes.",
    ],
    ja: [
        "Mayaはカフェにいます。Sentrelの警戒を開始して、2杯目のコーヒーを買いに行きます。",
        "誰かが彼女の席に座り…",
        "…充電器を抜きます。",
        "アラームが鳴り、カメラが写真を撮り、MayaのiPhoneに両方が届きます。",
        "周りの人が振り向きます。泥棒はMacを閉じます。アラームは鳴り続けます。",
        "カウンターでiPhoneが2回振動しました。Mayaが振り返ります。",
        "泥棒はMacを開き、音量を下げます…",
        "…Sentrelが音量を元に戻します。",
        "泥棒は消音にします。Sentrelは黙りません。",
        "泥棒は手を離して立ち去ります。Mayaが戻り、ログインしてアラームを止めます。",
        "音楽は一時停止のままで、スピーカーの設定は元どおりです。",
    ],
    "zh-Hans": [
        "Maya 坐在咖啡馆里。她为 Sentrel 布防，然后去买第二杯咖啡。",
        "有人在她的桌旁坐下……",
        "……拔掉了充电器。",
        "警报响起，相机拍下了照片，两者都出现在 Maya 的 iPhone 上。",
        "人们转过头来。小偷猛地合上屏幕。警报继续响。",
        "在柜台边，iPhone 振动了两次。Maya 转过身来。",
        "小偷打开屏幕，调低音量……",
        "……Sentrel 又把它调高。",
        "他按下静音。Sentrel 不会保持沉默。",
        "他松开手走了。Maya 回来，登录后停止了警报。",
        "音乐仍然暂停，扬声器恢复了原来的设置。",
    ],
};

/// The captions for a language tag; none without a table.
export const captionsFor = (tag) => tableOf(tables, tag);
