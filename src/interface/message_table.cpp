#include "interface/message_table.h"

#include <cstring>

namespace kzb {
namespace {

// Texts stand as the calling block knows them, spelling included.
// clang-format off
constexpr MessageTable english = {
    "",
    "Fail to open the file.\n\"%s\" is not found.",
    "Resistance is negative or zero.",
    "Turns in coil is negative or zero.",
    "Magnification of flux is negative or zero.",
    "Magnification of inductance is negative or zero.",
    "Magnification of torque is negative or zero.",
    "Magnification of magnet is negative or zero.",
    "Magnification of material is negative or zero.",
    "Invalid Motor_Type",
    "Error occured in solving circuit equations",
    "Number of ports does not correspond to motor type",
    "Invalid sample time. Please input positive value or -1.",
    "The file name of torque coefficient table does not exist in the KZB file.\nPlease turn off \"Use torque coefficient file\" check box.",
    "Fail to open the file.\nTorque coefficient file \"%s\" is not found.",
    "Invalid table name in KZB file.",
    "Specified parameter name does not exist in KZB file.",
    "Specified motor model and the motor model in the KZB file does not match.The motor model in the KZB file is %s.",
    "KZ block calculation result is infinite.Please check the setting of mdl, the collection value of the KZ block and the contentes of the KZB file.",
    "KZ block calculation result is NaN.Please check the setting of mdl, the collection value of the KZ block and the contentes of the KZB file.",
    "The specified kzb file has been corrected by DORN-Studio V13.0. The correction method in DORN-Studio V13.0 has a problem.Please use the kzb file corrected by DORN-Desginer 13.1 or later version.",
    "Invalid Connection type. Please input 0 or 1.",
    "Number of steps of the rotor skew is smaller than 2.",
    "Number of steps of the stator skew is smaller than 2.",
    "The specified circuit does't have a base potential.",
    "The circuit included in the specified kzb file is invalid.Modify the input mqd file to link FEM coil component is linked with FEM coil condition using DORN-Studio and recreate kzb file.",
    "The specified KZB file charactaristic is not valid.The results output may contain incorrect or invalid values.Using DORN-KZ Library Manager, select the calculation mode \"Recaculate Only Failed Cases\" and update the KZB file."};

constexpr MessageTable japanese = {
    "",
    "ファイルのオープンに失敗しました。\n「%s」が見つかりません。",
    "抵抗値が０または負です。",
    "コイル巻数が０または負です。",
    "フラックス補正倍率が０または負です。",
    "インダクタンス補正倍率が０または負です。",
    "トルク補正倍率が０または負です。",
    "磁石補正倍率が０または負です。",
    "材料補正倍率が０または負です。",
    "モータタイプが不正です。",
    "電圧方程式の計算でエラーが発生しました。",
    "ポート数がモータタイプに対応していません。",
    "Sample timeは正値または-1を入れてください。",
    "KZBファイル内にトルクの補正点列名が設定されていません。\n\"Use torque coefficient file\" チェックボックスをオフにしてください。",
    "ファイルのオープンに失敗しました。\nトルクの補正点列「%s」が見つかりません。",
    "KZBファイル内のテーブル名が不正です。",
    "指定したパラメータ名はKZBファイル内に存在しません。",
    "設定したモータモデルとkzbファイル内のモータモデルが一致しません。kzbファイル内のモータモデルは%sです。",
    "KZブロックの計算結果が無限大になりました。mdlファイルの設定、KZブロックパネルの補正係数の値、kzbファイルの内容に問題がある可能性があります。ご確認ください。",
    "KZブロックの計算結果が定義不能になりました。下記を確認して下さい。mdlファイルの設定、KZブロックパネルの補正係数の値、kzbファイルの内容に問題がある可能性があります。ご確認ください。",
    "指定されたKZBファイルはDORN-Studio V13.0 で補正されています。DORN-Studio V13.0 の補正方法は問題が報告されています。DORN-Studio V13.1以降の補正方法を適用したKZBファイルをご使用ください。",
    "結線パターン(Connection type)が不正です。0または1の値を入れてください。",
    "ロータスキューのステップ数が２未満です。",
    "ステータスキューのステップ数が２未満です。",
    "回路の中に基準電位がありません。",
    "KZBファイルの回路情報が不正です。DORN-Desingerから入力MQDファイルのFEMコイル条件とFEMコイル素子を関連付け、KZBファイルを再作成してください。",
    "指定したkzbファイルの特性テーブルは不完全です。出力される結果には不正な値が含まれる可能性があります。DORN-KZライブラリマネジャより計算モード[失敗した計算のみ再実行]を選択し、KZBファイルを更新してください。"};
// clang-format on

}  // namespace

const MessageTable& message_table(const char* language) {
    return language != nullptr && std::strcmp(language, "JPN") == 0 ? japanese : english;
}

}  // namespace kzb
